#include "res/program_resources.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "res/resource.h"

namespace {

using platform::resource::DecodedImage;

constexpr wchar_t kProgramPath[] = L"\\Tolvane\\Tolvane.exe";
constexpr std::uint32_t kBlack = 0;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kGold = 0xB8830C;

std::uint32_t At(const DecodedImage& image, int x, int y) {
    return image.pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                           static_cast<std::size_t>(x));
}

class ProgramResources : public testing::Test {
  protected:
    void SetUp() override {
        std::string problem;
        ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), kProgramPath, problem))
            << problem;
    }

    static DecodedImage Bitmap(WORD id) {
        auto image = platform::resource::DecodeBitmap(MAKEINTRESOURCEW(id));
        return image.value_or(DecodedImage{});
    }
};

TEST_F(ProgramResources, String128NamesTheProgram) {
    wchar_t text[260];
    EXPECT_EQ(LoadStringW(platform::resource::ModuleInstance(), IDR_MAINFRAME, text, 260), 7);
    EXPECT_STREQ(text, L"Tolvane");
}

TEST_F(ProgramResources, DialogTemplateIsByteForByteAsMeasured) {
    // Style to size, menu, class, title, point size; the font's name follows.
    constexpr char16_t kExpected[] = u"\x0440\xD0C8\0\0\0\0\0\x00BB\x0066\0\0\0\x0008MS Sans Serif";
    const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(IDD_NOTIFY), RT_DIALOG);
    ASSERT_NE(found, nullptr);
    ASSERT_EQ(SizeofResource(nullptr, found), sizeof kExpected);
    const void* data = LockResource(LoadResource(nullptr, found));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(std::memcmp(data, kExpected, sizeof kExpected), 0);
    // What reads it as a DLGTEMPLATE may count on its place.
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data) % 4, 0U);
}

TEST_F(ProgramResources, CloseStripIsAWhiteSymbolOnTwoReds) {
    const DecodedImage strip = Bitmap(IDB_CLOSE);
    ASSERT_EQ(strip.width, 75);
    ASSERT_EQ(strip.height, 72);
    EXPECT_EQ(strip.bits_per_pixel, 24);
    const std::uint32_t faces[] = {0xE70010, 0x8C0A14};
    for (int frame = 0; frame < 2; ++frame) {
        SCOPED_TRACE(frame);
        const int top = frame * 36;
        for (const int x : {8, 20, 54, 66})
            EXPECT_EQ(At(strip, x, top + 18), faces[frame]);
        EXPECT_EQ(At(strip, 37, top + 12), kWhite) << "the symbol's bar";
        EXPECT_EQ(At(strip, 37, top + 21), faces[frame]) << "inside the symbol's ring";
        for (const int x : {0, 74})
            for (const int y : {top, top + 35})
                EXPECT_EQ(At(strip, x, y), kBlack) << "corner " << x << ',' << y;
    }
}

TEST_F(ProgramResources, ButtonStripIsAShadedFaceAndAGoldOutline) {
    const DecodedImage strip = Bitmap(IDB_BUTTON);
    ASSERT_EQ(strip.width, 168);
    ASSERT_EQ(strip.height, 132);
    EXPECT_EQ(strip.bits_per_pixel, 24);
    const auto red = [&](int y) { return static_cast<int>(At(strip, 84, y) >> 16 & 0xFF); };
    EXPECT_NEAR(red(0), 89, 12);
    EXPECT_NEAR(red(33), 43, 4);
    EXPECT_LE(red(63), 4);
    for (int y = 2; y < 65; ++y)
        EXPECT_LE(red(y), red(y - 1)) << "row " << y;
    const struct {
        int x, y;
        std::uint32_t color;
    } pixels[] = {{84, 66, kGold},  {84, 131, kGold},  {0, 99, kGold},    {167, 99, kGold},
                  {0, 0, kBlack},   {167, 0, kBlack},  {0, 65, kBlack},   {167, 65, kBlack},
                  {0, 66, kBlack},  {167, 66, kBlack}, {0, 131, kBlack},  {167, 131, kBlack},
                  {10, 69, kBlack}, {84, 99, kBlack},  {157, 128, kBlack}};
    for (const auto& [x, y, color] : pixels)
        EXPECT_EQ(At(strip, x, y), color) << x << ',' << y;
}

TEST_F(ProgramResources, IconHasTwoSizesOfSixteenColours) {
    // The size that is asked for and the one that is nearest; without a size, the first.
    for (const auto& [asked, size] : {std::pair(32, 32), {16, 16}, {20, 16}, {0, 32}}) {
        SCOPED_TRACE(asked);
        const auto icon =
            platform::resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), asked, asked);
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->width, size);
        EXPECT_EQ(icon->height, size);
        EXPECT_EQ(icon->bits_per_pixel, 4);
        for (const int x : {0, size - 1})
            for (const int y : {0, size - 1})
                EXPECT_EQ(At(*icon, x, y), 0U) << "transparent corner";
        EXPECT_EQ(At(*icon, size / 2, size / 2), 0xFF26466EU) << "the lens";
    }
}

TEST_F(ProgramResources, VersionBlockSays0700) {
    const DWORD size = GetFileVersionInfoSizeW(L"\\tolvane\\TOLVANE.EXE", nullptr);
    ASSERT_GT(size, sizeof(VS_FIXEDFILEINFO));
    std::vector<std::byte> block(size);
    EXPECT_FALSE(GetFileVersionInfoW(kProgramPath, 0, size - 1, block.data()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    ASSERT_TRUE(GetFileVersionInfoW(kProgramPath, 0, size, block.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &value, &length));
    ASSERT_EQ(length, 52U);
    VS_FIXEDFILEINFO info{};
    std::memcpy(&info, value, sizeof info);
    EXPECT_EQ(info.dwSignature, 0xFEEF04BDU);
    EXPECT_EQ(info.dwFileVersionMS, 0x00000007U);
    EXPECT_EQ(info.dwFileVersionLS, 0U);
    EXPECT_EQ(info.dwProductVersionMS, 0x00000007U);
    EXPECT_EQ(info.dwProductVersionLS, 0U);
    const std::pair<const wchar_t*, const wchar_t*> texts[] = {
        {L"\\StringFileInfo\\040904B0\\FileVersion", L"0.7.0.0"},
        {L"\\stringfileinfo\\040904b0\\productversion", L"0.7.0.0"},
        {L"\\StringFileInfo\\040904B0\\OriginalFilename", L"Tolvane.exe"},
    };
    for (const auto& [path, text] : texts) {
        ASSERT_TRUE(VerQueryValueW(block.data(), path, &value, &length)) << path;
        EXPECT_STREQ(static_cast<const wchar_t*>(value), text);
        EXPECT_EQ(length, std::wcslen(text) + 1);
    }
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\VarFileInfo\\Translation", &value, &length));
    ASSERT_EQ(length, 4U);
    EXPECT_EQ(std::memcmp(value, "\x09\x04\xB0\x04", 4), 0);
    EXPECT_FALSE(VerQueryValueW(block.data(), L"\\StringFileInfo\\0\\Any", &value, &length));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
}

}  // namespace
