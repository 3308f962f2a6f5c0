#include "res/program_resources.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "res/resource.h"

namespace {

using platform::resource::DecodedImage;

constexpr wchar_t kPath[] = L"\\Tolvane\\Tolvane.exe";
constexpr std::uint32_t kBlack = 0;
constexpr std::uint32_t kWhite = 0xFFFFFF;

std::uint32_t At(const DecodedImage& image, int x, int y) {
    return image.pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                           static_cast<std::size_t>(x));
}

int Red(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 16 & 0xFF);
}

class ProgramResources : public testing::Test {
  protected:
    void SetUp() override {
        std::string problem;
        ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), kPath, problem))
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
    EXPECT_EQ(LoadStringW(nullptr, IDR_MAINFRAME, text, 5), 4);
    EXPECT_STREQ(text, L"Tolv");
}

TEST_F(ProgramResources, DialogTemplateIsByteForByteAsMeasured) {
    constexpr unsigned char
        kExpected[] = {0x40, 0x04, 0xC8, 0xD0, 0,   0, 0,   0, 0,   0, 0,   0, 0,   0,
                       187,  0,    102,  0,                     // style to size
                       0,    0,    0,    0,    0,   0, 8,   0,  // menu, class, title, point size
                       'M',  0,    'S',  0,    ' ', 0, 'S', 0, 'a', 0, 'n', 0, 's', 0,
                       ' ',  0,    'S',  0,    'e', 0, 'r', 0, 'i', 0, 'f', 0, 0,   0};
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

        int left = 75;
        int right = -1;
        int upper = 36;
        int lower = -1;
        for (int y = 0; y < 36; ++y) {
            for (int x = 0; x < 75; ++x) {
                if (At(strip, x, top + y) != kWhite)
                    continue;
                left = std::min(left, x);
                right = std::max(right, x);
                upper = std::min(upper, y);
                lower = std::max(lower, y);
            }
        }
        EXPECT_EQ(left, 74 - right);
        EXPECT_NEAR(upper, 35 - lower, 1);
        EXPECT_GE(lower - upper, 16) << "large enough to be seen";
    }
}

TEST_F(ProgramResources, ButtonStripIsAShadedFaceAndAGoldOutline) {
    const DecodedImage strip = Bitmap(IDB_BUTTON);
    ASSERT_EQ(strip.width, 168);
    ASSERT_EQ(strip.height, 132);
    EXPECT_EQ(strip.bits_per_pixel, 24);
    EXPECT_NEAR(Red(At(strip, 84, 0)), 89, 12);
    EXPECT_NEAR(Red(At(strip, 84, 4)), 89, 12);
    EXPECT_NEAR(Red(At(strip, 84, 33)), 43, 4);
    EXPECT_LE(Red(At(strip, 84, 63)), 4);
    for (int y = 2; y < 65; ++y)
        EXPECT_LE(Red(At(strip, 84, y)), Red(At(strip, 84, y - 1))) << "row " << y;

    constexpr std::uint32_t kGold = 0xB8830C;
    const std::pair<int, int> outline[] = {{84, 66}, {84, 131}, {0, 99}, {167, 99}};
    for (const auto& [x, y] : outline)
        EXPECT_EQ(At(strip, x, y), kGold) << x << ',' << y;
    for (int y = 69; y < 129; ++y)
        for (int x = 10; x < 158; ++x)
            ASSERT_EQ(At(strip, x, y), kBlack) << x << ',' << y;
    for (const int x : {0, 167})
        for (const int y : {0, 65, 66, 131})
            EXPECT_EQ(At(strip, x, y), kBlack) << "corner " << x << ',' << y;
}

TEST_F(ProgramResources, IconHasTwoSizesOfSixteenColours) {
    for (const int size : {32, 16}) {
        SCOPED_TRACE(size);
        const auto icon =
            platform::resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), size, size);
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->width, size);
        EXPECT_EQ(icon->height, size);
        EXPECT_EQ(icon->bits_per_pixel, 4);
        EXPECT_LE(std::set(icon->pixels.begin(), icon->pixels.end()).size(), 17U);
        for (const int x : {0, size - 1})
            for (const int y : {0, size - 1})
                EXPECT_EQ(At(*icon, x, y), 0U) << "transparent corner";
        EXPECT_EQ(At(*icon, size / 2, size / 2), 0xFF26466EU) << "the lens";
    }
    const auto nearest = platform::resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), 20, 20);
    ASSERT_TRUE(nearest);
    EXPECT_EQ(nearest->width, 16);
    const auto first = platform::resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), 0, 0);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->width, 32);
}

TEST_F(ProgramResources, VersionBlockSays0700) {
    DWORD handle = 1;
    const DWORD size = GetFileVersionInfoSizeW(L"\\tolvane\\TOLVANE.EXE", &handle);
    ASSERT_GT(size, sizeof(VS_FIXEDFILEINFO));
    EXPECT_EQ(handle, 0U);
    std::vector<std::byte> block(size);
    EXPECT_FALSE(GetFileVersionInfoW(kPath, 0, size - 1, block.data()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    ASSERT_TRUE(GetFileVersionInfoW(kPath, 0, size, block.data()));

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
    const unsigned char translation[] = {0x09, 0x04, 0xB0, 0x04};
    EXPECT_EQ(std::memcmp(value, translation, 4), 0);

    EXPECT_FALSE(
        VerQueryValueW(block.data(), L"\\StringFileInfo\\00000000\\FileVersion", &value, &length));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_EQ(length, 0U);
}

}  // namespace
