#include <gtest/gtest.h>

#include "platform/gdi/gdi.h"
#include "platform/gdi/icon.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/gdi/canvas.h"

using namespace tests;
using namespace platform;

namespace {

class Images : public testing::Test {
  protected:
    Images() {
        std::string problem;
        EXPECT_TRUE(
            resource::SetModule(res::ProgramResources(), L"\\Tolvane\\Tolvane.exe", problem))
            << problem;
    }
    ~Images() override {
        EXPECT_EQ(gdi::DrawingObjectCount(), 0u);
        EXPECT_EQ(gdi::IconCount(), 0u);
        gdi::Shutdown();
    }
    Platform platform;
};

TEST_F(Images, WhatIsNotThereHasTheLastErrorOfTheResource) {
    struct Case {
        HINSTANCE module;
        WORD id;
        UINT type;
        int width;
        UINT flags;
        DWORD error;
    };
    const Case kCases[] = {
        {nullptr, 999, IMAGE_BITMAP, 0, 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {nullptr, 999, IMAGE_ICON, 0, 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {reinterpret_cast<HINSTANCE>(0x1234), IDB_CLOSE, IMAGE_BITMAP, 0, 0, ERROR_INVALID_HANDLE},
        {nullptr, IDB_CLOSE, IMAGE_BITMAP, 10, 0, ERROR_NOT_SUPPORTED},
        {nullptr, IDB_CLOSE, IMAGE_BITMAP, -1, 0, ERROR_INVALID_PARAMETER},
        {nullptr, IDB_CLOSE, IMAGE_BITMAP, 0, LR_LOADFROMFILE, ERROR_NOT_SUPPORTED},
        {nullptr, IDB_CLOSE, IMAGE_CURSOR, 0, 0, ERROR_NOT_SUPPORTED},
    };
    for (const Case& row : kCases) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(
            LoadImageW(row.module, MAKEINTRESOURCEW(row.id), row.type, row.width, 0, row.flags),
            nullptr);
        EXPECT_EQ(GetLastError(), row.error) << row.id << " " << row.type;
    }
}

TEST_F(Images, AnIconOfTheProgramsOwnIsDestroyedOnce) {
    const auto icon = static_cast<HICON>(
        LoadImageW(nullptr, MAKEINTRESOURCEW(IDR_MAINFRAME), IMAGE_ICON, 16, 16, 0));
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(gdi::IconCount(), 1u);
    EXPECT_TRUE(DestroyIcon(icon));
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(DestroyIcon(icon));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

}  // namespace
