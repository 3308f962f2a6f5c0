#include "platform/gdi/gdi.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/gdi/canvas.h"

namespace tests {
namespace {

PLATFORM_TEST(Images, LoadOrFailWithTheLastErrorOfTheResource) {
    std::string problem;
    ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), L"\\Tolvane.exe", problem));
    const auto expect = [](DWORD error, WORD id, UINT type, int width = 0, UINT flags = 0,
                           HINSTANCE module = nullptr) {
        SCOPED_TRACE(testing::Message() << id << ' ' << type << ' ' << width << ' ' << flags);
        ExpectFails(
            error, [&] { return LoadImageW(module, MAKEINTRESOURCEW(id), type, width, 0, flags); });
    };
    const auto stranger = reinterpret_cast<HINSTANCE>(0x1234);
    expect(ERROR_RESOURCE_NAME_NOT_FOUND, 999, IMAGE_BITMAP);
    expect(ERROR_RESOURCE_NAME_NOT_FOUND, 999, IMAGE_ICON);
    expect(ERROR_INVALID_HANDLE, IDB_CLOSE, IMAGE_BITMAP, 0, 0, stranger);
    expect(ERROR_NOT_SUPPORTED, IDB_CLOSE, IMAGE_BITMAP, 10);
    expect(ERROR_INVALID_PARAMETER, IDB_CLOSE, IMAGE_BITMAP, -1);
    expect(ERROR_NOT_SUPPORTED, IDB_CLOSE, IMAGE_BITMAP, 0, LR_LOADFROMFILE);
    expect(ERROR_NOT_SUPPORTED, IDB_CLOSE, IMAGE_CURSOR);
    EXPECT_EQ(gdi::DrawingObjectCount(), 0u);
    EXPECT_NE(LoadImageW(nullptr, MAKEINTRESOURCEW(IDR_MAINFRAME), IMAGE_ICON, 16, 16, 0), nullptr);
    EXPECT_EQ(gdi::IconCount(), 1u);
    gdi::EndProgram();
    EXPECT_EQ(gdi::IconCount(), 0u);
}

}  // namespace
}  // namespace tests
