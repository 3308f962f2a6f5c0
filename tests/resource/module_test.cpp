#include "platform/resource/module.h"

#include <cstring>

#include "res/program_resources.h"
#include "tests/resource/resource_bytes.h"

namespace tests {
namespace {

class Module : public testing::Test {
  protected:
    Module() { UseModule(file_); }

    static Bytes SomeResources() {
        ByteList strings;
        strings.Words({0, 2, 'H', 'i', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        const Bytes bitmap = Dib(1, 1, 24).Dwords({0x00123456});
        // An entry whose type and name are texts.
        ByteList named;
        named.Dwords({3, 48}).Text(u"CARD").Text(u"Slot.A").Dwords({0, 0, 0, 0});
        return ResFile({ResEntry(2, 202, bitmap), ResEntry(2, 203, bitmap), ResEntry(6, 9, strings),
                        named.Byte(1).Byte(2).Byte(3).Align()});
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
    ASSERT_GT(size, sizeof(VS_FIXEDFILEINFO));
    std::vector<std::byte> block(size);
    ExpectFails(ERROR_INSUFFICIENT_BUFFER,
                [&] { return GetFileVersionInfoW(kProgramPath, 0, size - 1, block.data()); });
    ASSERT_TRUE(GetFileVersionInfoW(kProgramPath, 0, size, block.data()));
    void* value = nullptr;
    UINT length = 0;
    const auto query = [&](LPCWSTR path) {
        return VerQueryValueW(block.data(), path, &value, &length);
    };
    ASSERT_TRUE(query(L"\\"));
    // The signature, the structure's version, and the file's: 0.7.0.0.
    EXPECT_EQ(length, 52U);
    EXPECT_EQ(std::memcmp(value, "\xBD\x04\xEF\xFE\0\0\1\0\7\0\0\0\0\0\0\0", 16), 0);
    const std::pair<const wchar_t*, const wchar_t*> texts[] = {
        {L"\\StringFileInfo\\040904B0\\FileVersion", L"0.7.0.0"},
        {L"\\stringfileinfo\\040904b0\\productversion", L"0.7.0.0"},
        {L"\\StringFileInfo\\040904B0\\OriginalFilename", L"Tolvane.exe"},
    };
    for (const auto& [path, text] : texts) {
        ASSERT_TRUE(query(path)) << path;
        EXPECT_STREQ(static_cast<const wchar_t*>(value), text);
        EXPECT_EQ(length, std::wcslen(text) + 1);
    }
    ASSERT_TRUE(query(L"\\VarFileInfo\\Translation"));
    ASSERT_EQ(length, 4U);
    EXPECT_EQ(std::memcmp(value, "\x09\x04\xB0\x04", 4), 0);
    ExpectFails(ERROR_RESOURCE_TYPE_NOT_FOUND, [&] { return query(L"\\StringFileInfo\\0\\Any"); });
}

}  // namespace
}  // namespace tests
