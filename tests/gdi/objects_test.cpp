#include <filesystem>
#include <fstream>

#include "platform/gdi/font_files.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/gdi/canvas.h"

namespace tests {
namespace {

PLATFORM_TEST(Objects, InvalidHandlesAreErrors) {
    const RECT dot{0, 0, 1, 1};
    const HDC stale_dc = CreateCompatibleDC(nullptr);
    EXPECT_TRUE(DeleteDC(stale_dc));
    const HBRUSH stale_brush = CreateSolidBrush(0);
    EXPECT_TRUE(DeleteObject(stale_brush));
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBRUSH brush = CreateSolidBrush(0);
    const auto expect_invalid = [](auto... results) {
        (ExpectFails(ERROR_INVALID_HANDLE, results), ...);
    };
    for (const HDC bad : {stale_dc, HDC(brush), HDC(INT_PTR{-1})})
        expect_invalid([=] { return DeleteDC(bad); }, [=] { return gdi::DestroyWindowDC(bad); },
                       [=] { return BitBlt(dc, 0, 0, 1, 1, bad, 0, 0, SRCCOPY); },
                       [=] { return TransparentImage(dc, 0, 0, 1, 1, bad, 0, 0, 1, 1, 0); });
    for (const HGDIOBJ bad : {HGDIOBJ{stale_brush}, HGDIOBJ{dc}, HGDIOBJ(INT_PTR{-1})})
        expect_invalid([=] { return DeleteObject(bad); }, [=] { return SelectObject(dc, bad); },
                       [=] { return FillRect(dc, &dot, HBRUSH(bad)); });
    gdi::Shutdown();
    ExpectFails(ERROR_INVALID_HANDLE, [=] { return DeleteDC(dc) || DeleteObject(brush); });
    // Drawing works again.
    Canvas canvas(100, 40);
    canvas.UseFont({9, 26, 500});
    EXPECT_EQ(canvas.Draw(L"国", {0, 0, 100, 40}), 26);
}

PLATFORM_TEST(Objects, SelectedObjectCannotBeDeleted) {
    Canvas window(4, 4);
    const HDC first = CreateCompatibleDC(nullptr);
    const HDC second = CreateCompatibleDC(nullptr);
    const HGDIOBJ bitmap = CreateCompatibleBitmap(first, 4, 4);
    for (const HGDIOBJ object :
         {bitmap, HGDIOBJ{CreateSolidBrush(0)}, HGDIOBJ{MakeFont({9, 26, 500})}}) {
        const HGDIOBJ displaced = SelectObject(first, object);
        ASSERT_NE(displaced, nullptr);
        EXPECT_EQ(SelectObject(first, object), object);
        // A bitmap is in one memory device context at a time.
        EXPECT_TRUE(object != bitmap || !SelectObject(second, object));
        EXPECT_TRUE(object != bitmap || !SelectObject(window.dc, object));
        EXPECT_FALSE(DeleteObject(object));
        EXPECT_EQ(SelectObject(first, displaced), object);
        EXPECT_TRUE(DeleteObject(displaced)) << "a stock object stays";
        EXPECT_TRUE(SelectObject(second, object));
        EXPECT_TRUE(SelectObject(second, displaced));
        EXPECT_TRUE(DeleteObject(object));
        EXPECT_FALSE(DeleteObject(object));
    }
    EXPECT_TRUE(DeleteDC(first));
    EXPECT_TRUE(DeleteDC(second));
    EXPECT_EQ(gdi::DrawingObjectCount(), 0u);
    const auto make = [&](int side) { return CreateCompatibleBitmap(window.dc, side, side); };
    ExpectFails(ERROR_NOT_ENOUGH_MEMORY, [&] { return make(0x7FFFFFFF); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return make(-1); });
}

PLATFORM_TEST(Images, LoadOrFailWithTheLastErrorOfTheResource) {
    std::string problem;
    ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), L"\\Tolvane.exe", problem));
    const auto expect = [](DWORD error, WORD id, UINT type, int width = 0, UINT flags = 0,
                           HINSTANCE module = nullptr) {
        SCOPED_TRACE(testing::Message() << id << ' ' << type << ' ' << width << ' ' << flags);
        ExpectFails(
            error, [&] { return LoadImageW(module, MAKEINTRESOURCEW(id), type, width, 0, flags); });
    };
    expect(ERROR_RESOURCE_NAME_NOT_FOUND, 999, IMAGE_BITMAP);
    expect(ERROR_RESOURCE_NAME_NOT_FOUND, 999, IMAGE_ICON);
    expect(ERROR_INVALID_HANDLE, IDB_CLOSE, IMAGE_BITMAP, 0, 0, HINSTANCE(0x1234));
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

TEST(Fonts, AMissingFontFileIsNamedWithItsPackage) {
    namespace fs = std::filesystem;
    const fs::path directory = fs::path(testing::TempDir()) / "fonts";
    fs::create_directories(directory / "below");
    std::map<gdi::Typeface, fs::path> files;
    std::string problem;
    for (const char* name : {"LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf",
                             "LiberationMono-Regular.ttf", "LiberationMono-Bold.ttf", "ipag.ttf"}) {
        EXPECT_FALSE(gdi::FindFontFiles(directory, files, problem));
        EXPECT_NE(problem.find(name), std::string::npos) << problem;
        std::ofstream(directory / "below" / name) << "";
    }
    EXPECT_NE(problem.find("fonts-ipafont-gothic"), std::string::npos);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
    EXPECT_TRUE(gdi::FindFontFiles(directory, files, problem));
    fs::remove_all(directory);
    EXPECT_TRUE(gdi::CheckFonts(problem)) << problem;
}

}  // namespace
}  // namespace tests
