#include "res/program_resources.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "res/resource.h"

namespace {

constexpr wchar_t kProgramPath[] = L"\\Tolvane\\Tolvane.exe";

class ProgramResources : public testing::Test {
  protected:
    void SetUp() override {
        std::string problem;
        ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), kProgramPath, problem))
            << problem;
    }
};

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

// The size that is asked for and the one that is nearest; without a size, the first.
TEST_F(ProgramResources, IconIsTheNearestInSize) {
    for (const auto& [asked, size] : {std::pair(32, 32), {16, 16}, {20, 16}, {0, 32}}) {
        const auto icon =
            platform::resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), asked, asked);
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->width, size) << asked;
        EXPECT_EQ(icon->height, size) << asked;
    }
}

}  // namespace
