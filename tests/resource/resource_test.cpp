#include <cstring>
#include <iterator>
#include <sstream>

#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/support/cases.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

namespace resource = platform::resource;
using Bytes = std::vector<std::byte>;
using Words = std::vector<WORD>;
using Dwords = std::vector<DWORD>;

constexpr wchar_t kProgramPath[] = L"\\Tolvane\\Tolvane.exe";

void UseModule(std::span<const std::byte> file) {
    std::string problem;
    ASSERT_TRUE(resource::SetModule(file, kProgramPath, problem)) << problem;
}

// The bytes of the parts in a row.
template <class... Parts>
Bytes Join(const Parts&... parts) {
    Bytes all;
    const auto add = [&all](std::span<const std::byte> bytes) {
        all.insert(all.end(), bytes.begin(), bytes.end());
    };
    (add(std::as_bytes(std::span(parts))), ...);
    return all;
}

// An entry of a compiled resource file: its type and name as the file has them, padded.
Bytes NamedEntry(const Words& type_and_name, const Bytes& data) {
    const Dwords sizes{static_cast<DWORD>(data.size()),
                       static_cast<DWORD>(24 + 2 * type_and_name.size())};
    Bytes entry = Join(sizes, type_and_name, Dwords{0, 0x04090030, 0, 0}, data);
    entry.resize((entry.size() + 3) / 4 * 4);
    return entry;
}

Bytes ResEntry(WORD type, WORD name, const Bytes& data) {
    return NamedEntry({0xFFFF, type, 0xFFFF, name}, data);
}

template <class... Entries>
Bytes ResFile(const Entries&... entries) {
    return Join(ResEntry(0, 0, {}), entries...);
}

// A BITMAPINFOHEADER with what follows it, colours and pixels.
Bytes Dib(DWORD width, DWORD height, WORD bits_per_pixel, const Dwords& rest, DWORD compression = 0,
          DWORD colours = 0) {
    return Join(Dwords{40, width, height}, Words{1, bits_per_pixel},
                Dwords{compression, 0, 0, 0, colours, 0}, rest);
}

using Pixels = std::vector<std::uint32_t>;

TEST(Image, Bitmaps) {
    const auto cases = CasesFrom(RESOURCE_CASES "/bitmaps.txt");
    ASSERT_FALSE(cases.empty());
    for (const auto& [input, result] : cases) {
        std::istringstream numbers(input);
        DWORD width = 0, height = 0, bits = 0, compression = 0, colours = 0;
        numbers >> std::hex >> width >> height >> bits >> compression >> colours;
        const Dwords rest(std::istream_iterator<DWORD>(numbers), {});
        const Bytes file = ResFile(ResEntry(
            2, 1, Dib(width, height, static_cast<WORD>(bits), rest, compression, colours)));
        UseModule(file);
        const auto image = resource::DecodeBitmap(MAKEINTRESOURCEW(1));
        std::ostringstream found;
        if (image)
            found << image->width << 'x' << image->height << std::hex << std::uppercase;
        else
            found << "error " << GetLastError();
        for (const std::uint32_t pixel : image.value_or(resource::DecodedImage()).pixels)
            found << ' ' << pixel;
        EXPECT_EQ(found.str(), result) << input;
    }
}

// A group of a square of 2 with 1 bit and the same with 32 bits.
Bytes TwoIcons(DWORD pixel) {
    const Bytes plain = Dib(2, 4, 1, {0x111111, 0x222222, 0x40, 0x80, 0xC0, 0x40});
    const Bytes deep = Dib(2, 4, 32, {pixel, pixel, pixel, pixel, 0x40, 0x80});
    const Words group{0, 1, 2, 0x0202, 2, 1, 1, 64, 0, 7, 0x0202, 0, 1, 32, 64, 0, 8};
    return ResFile(ResEntry(3, 7, plain), ResEntry(3, 8, deep), ResEntry(14, 1, Join(group)));
}

TEST(Image, IconOpacityComesFromThePixelsOrElseFromTheMask) {
    const std::pair<DWORD, Pixels> cases[] = {
        {0x80010203, Pixels(4, 0x80010203)},
        {0x00010203, {0x00010203, 0xFF010203, 0xFF010203, 0x00010203}}};
    for (const auto& [pixel, expected] : cases) {
        const Bytes file = TwoIcons(pixel);
        UseModule(file);
        const auto icon = resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2);
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->bits_per_pixel, 32);
        EXPECT_EQ(icon->pixels, expected);
        resource::Hide(RT_ICON, MAKEINTRESOURCEW(8));
        ExpectFails(ERROR_RESOURCE_NAME_NOT_FOUND,
                    [] { return resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2).has_value(); });
    }
}

// The requested and the nearest size; size 0 means the first image.
TEST(Image, IconOfTheProgramIsTheNearestInSize) {
    UseModule(res::ProgramResources());
    for (const auto& [requested, size] : {std::pair(32, 32), {16, 16}, {20, 16}, {0, 32}}) {
        const auto icon =
            resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), requested, requested);
        EXPECT_TRUE(icon && icon->width == size && icon->height == size) << requested;
    }
}

class Module : public testing::Test {
  protected:
    Module() { UseModule(file_); }

    static Bytes SomeResources() {
        const Bytes bitmap = Dib(1, 1, 24, {0x00123456});
        Words strings{0, 2, 'H', 'i'};
        strings.resize(18);
        const Words text_names{'C', 'A', 'R', 'D', 0, 'S', 'l', 'o', 't', '.', 'A', 0};
        return ResFile(ResEntry(2, 202, bitmap), ResEntry(2, 203, bitmap),
                       ResEntry(6, 9, Join(strings)), NamedEntry(text_names, Bytes(3)));
    }

    const Bytes file_ = SomeResources();
};

TEST_F(Module, FindsByNumberAndByText) {
    const auto expect = [](DWORD size, LPCWSTR type, LPCWSTR name, DWORD error = ERROR_SUCCESS) {
        SetLastError(ERROR_SUCCESS);
        const HRSRC found = FindResourceW(nullptr, name, type);
        EXPECT_EQ(GetLastError(), error);
        EXPECT_EQ(found != nullptr, size != 0);
        EXPECT_EQ(resource::Find(type, name).value_or(std::span<const std::byte>()).size(), size);
    };
    expect(44, RT_BITMAP, MAKEINTRESOURCEW(202));
    expect(44, L"#2", L"#203");
    expect(3, L"card", L"SLOT.a");
    expect(0, RT_BITMAP, MAKEINTRESOURCEW(204), ERROR_RESOURCE_NAME_NOT_FOUND);
    expect(0, RT_BITMAP, L"#65738", ERROR_RESOURCE_NAME_NOT_FOUND);
    expect(0, RT_BITMAP, L"#20x", ERROR_RESOURCE_NAME_NOT_FOUND);
    expect(0, L"card", L"Slot.B", ERROR_RESOURCE_NAME_NOT_FOUND);
    expect(0, RT_ICON, MAKEINTRESOURCEW(202), ERROR_RESOURCE_TYPE_NOT_FOUND);
    expect(0, L"cards", L"Slot.A", ERROR_RESOURCE_TYPE_NOT_FOUND);
    resource::Hide(RT_BITMAP, L"#203");
    EXPECT_FALSE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(203)));
    EXPECT_TRUE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(202)));
    UseModule(file_);
    EXPECT_TRUE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(203)))
        << "hidden only until the next module";
}

TEST_F(Module, Strings) {
    const struct {
        UINT id;
        int size;
        std::wstring text;
    } cases[] = {{129, 16, L"Hi"}, {129, 3, L"Hi"}, {129, 2, L"H"}, {129, 1, L""},
                 {128, 16, L""},   {143, 16, L""},  {144, 16, L""}, {129 + 0x10000, 16, L""}};
    for (const auto& row : cases) {
        SCOPED_TRACE(&row - cases);
        std::wstring text(17, L'#');
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(LoadStringW(nullptr, row.id, text.data(), row.size), int(row.text.size()));
        EXPECT_EQ(text.c_str(), row.text);
        EXPECT_EQ(text[row.size], L'#') << "written beyond its size";
        EXPECT_EQ(GetLastError(), row.id == 129 ? ERROR_SUCCESS : ERROR_RESOURCE_NAME_NOT_FOUND);
    }
}

TEST_F(Module, MissingResourcesAreErrors) {
    const auto stranger = reinterpret_cast<HMODULE>(this);
    const auto version = [](LPCWSTR path) { return GetFileVersionInfoSizeW(path, nullptr); };
    wchar_t text[4];
    ExpectFails(ERROR_MOD_NOT_FOUND, [&] { return FindResourceW(stranger, L"#202", RT_BITMAP); });
    ExpectFails(ERROR_MOD_NOT_FOUND, [&] { return LoadStringW(stranger, 129, text, 4); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return LoadStringW(nullptr, 129, text, 0); });
    ExpectFails(ERROR_INVALID_HANDLE,
                [&] { return LoadResource(nullptr, reinterpret_cast<HRSRC>(this)); });
    ExpectFails(ERROR_RESOURCE_TYPE_NOT_FOUND, [&] { return version(kProgramPath); });
    ExpectFails(ERROR_FILE_NOT_FOUND, [&] { return version(L"\\Windows\\other.exe"); });
    ExpectFails(ERROR_RESOURCE_NAME_NOT_FOUND,
                [] { return LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(128)); });
}

TEST_F(Module, HasAPathAlsoWithDamagedResources) {
    std::string problem;
    int accepted = 0;
    for (std::size_t cut = 1; cut <= file_.size(); ++cut) {
        const Bytes damaged(file_.begin(), file_.end() - std::ptrdiff_t(cut));
        accepted += resource::SetModule(damaged, kProgramPath, problem);
        EXPECT_TRUE(cut != 4 || problem == "byte 252: data cut off") << problem;
    }
    EXPECT_EQ(accepted, 5) << "cuts between entries and in the padding of the last";
    EXPECT_FALSE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(202)));
    wchar_t path[32];
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 21), 20U);
    EXPECT_STREQ(path, kProgramPath);
    EXPECT_EQ(GetModuleFileNameW(resource::ModuleInstance(), path, 20), 20U);
    EXPECT_STREQ(path, L"\\Tolvane\\Tolvane.ex");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST(ProgramResources, VersionBlockSays0700) {
    UseModule(res::ProgramResources());
    const DWORD size = GetFileVersionInfoSizeW(L"\\tolvane\\TOLVANE.EXE", nullptr);
    std::vector<std::byte> block(size);
    ExpectFails(ERROR_INSUFFICIENT_BUFFER,
                [&] { return GetFileVersionInfoW(kProgramPath, 0, size - 1, block.data()); });
    ASSERT_TRUE(GetFileVersionInfoW(kProgramPath, 0, size, block.data()));
    void* value = nullptr;
    UINT length = 0;
    const auto query = [&](LPCWSTR path) {
        return VerQueryValueW(block.data(), path, &value, &length);
    };
    const auto expect = [&](LPCWSTR path, UINT expected_length, const Bytes& beginning) {
        ASSERT_TRUE(query(path)) << testing::PrintToString(path);
        EXPECT_EQ(length, expected_length);
        EXPECT_EQ(std::memcmp(value, beginning.data(), beginning.size()), 0);
    };
    // The signature, the structure's version, and the file's: 0.7.0.0.
    expect(L"\\", 52, Join(Dwords{0xFEEF04BD, 0x00010000, 0x00000007, 0}));
    expect(L"\\StringFileInfo\\040904B0\\FileVersion", 8, Join(L"0.7.0.0"));
    expect(L"\\stringfileinfo\\040904b0\\ORIGINALfilename", 12, Join(L"Tolvane.exe"));
    expect(L"\\VarFileInfo\\Translation", 4, Join(Dwords{0x04B00409}));
    ExpectFails(ERROR_RESOURCE_TYPE_NOT_FOUND, [&] { return query(L"\\StringFileInfo\\0\\Any"); });
}

}  // namespace
}  // namespace tests
