#include "platform/gdi/icon.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/gdi/canvas.h"

namespace tests {
namespace {

PLATFORM_TEST(Images, WhatIsNotThereHasTheLastErrorOfTheResource) {
    std::string problem;
    ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), L"\\Tolvane.exe", problem));
    const auto stranger = reinterpret_cast<HINSTANCE>(0x1234);
    const struct {
        HINSTANCE module;
        WORD id;
        UINT type;
        int width;
        UINT flags;
        DWORD error;
    } cases[] = {
        {nullptr, 999, IMAGE_BITMAP, 0, 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {nullptr, 999, IMAGE_ICON, 0, 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {stranger, IDB_CLOSE, IMAGE_BITMAP, 0, 0, ERROR_INVALID_HANDLE},
        {nullptr, IDB_CLOSE, IMAGE_BITMAP, 10, 0, ERROR_NOT_SUPPORTED},
        {nullptr, IDB_CLOSE, IMAGE_BITMAP, -1, 0, ERROR_INVALID_PARAMETER},
        {nullptr, IDB_CLOSE, IMAGE_BITMAP, 0, LR_LOADFROMFILE, ERROR_NOT_SUPPORTED},
        {nullptr, IDB_CLOSE, IMAGE_CURSOR, 0, 0, ERROR_NOT_SUPPORTED},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(&row - cases);
        ExpectFails(row.error, [&] {
            return LoadImageW(row.module, MAKEINTRESOURCEW(row.id), row.type, row.width, 0,
                              row.flags);
        });
    }
    EXPECT_EQ(gdi::DrawingObjectCount(), 0u);
    // An icon of the program's own is destroyed once.
    const auto icon = static_cast<HICON>(
        LoadImageW(nullptr, MAKEINTRESOURCEW(IDR_MAINFRAME), IMAGE_ICON, 16, 16, 0));
    EXPECT_EQ(gdi::IconCount(), 1u);
    EXPECT_TRUE(DestroyIcon(icon));
    ExpectFails(ERROR_INVALID_HANDLE, [&] { return DestroyIcon(icon); });
    EXPECT_EQ(gdi::IconCount(), 0u);
}

}  // namespace
}  // namespace tests
