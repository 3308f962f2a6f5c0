#include <filesystem>
#include <fstream>

#include "platform/gdi/font_files.h"
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
    for (const HDC bad : {stale_dc, reinterpret_cast<HDC>(brush), HDC(INT_PTR{-1})}) {
        const std::function<bool()> calls[] = {
            [=] { return DeleteDC(bad); }, [=] { return gdi::DestroyWindowDC(bad); },
            [=] { return BitBlt(dc, 0, 0, 1, 1, bad, 0, 0, SRCCOPY); },
            [=] { return TransparentImage(dc, 0, 0, 1, 1, bad, 0, 0, 1, 1, 0); }};
        for (const auto& call : calls)
            ExpectFails(ERROR_INVALID_HANDLE, call);
    }
    for (const HGDIOBJ bad : {HGDIOBJ{stale_brush}, HGDIOBJ{dc}, HGDIOBJ(INT_PTR{-1})}) {
        const std::function<bool()> calls[] = {
            [=] { return DeleteObject(bad); }, [=] { return SelectObject(dc, bad); },
            [&] { return FillRect(dc, &dot, static_cast<HBRUSH>(bad)); }};
        for (const auto& call : calls)
            ExpectFails(ERROR_INVALID_HANDLE, call);
    }
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

TEST(Fonts, AMissingFontFileIsNamedWithItsPackage) {
    namespace fs = std::filesystem;
    const fs::path directory = fs::path(testing::TempDir()) / "fonts";
    fs::create_directories(directory / "below");
    std::map<gdi::Typeface, fs::path> files;
    std::string problem;
    const auto found = [&] { return gdi::FindFontFiles(directory, files, problem); };
    EXPECT_FALSE(found());
    for (const char* name : {"LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf",
                             "LiberationMono-Regular.ttf", "LiberationMono-Bold.ttf"})
        std::ofstream(directory / "below" / name) << "";
    EXPECT_FALSE(found());
    EXPECT_NE(problem.find("ipag.ttf"), std::string::npos);
    EXPECT_NE(problem.find("fonts-ipafont-gothic"), std::string::npos);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
    std::ofstream(directory / "ipag.ttf") << "";
    EXPECT_TRUE(found());
    fs::remove_all(directory);
    EXPECT_FALSE(found());
    EXPECT_TRUE(gdi::CheckFonts(problem)) << problem;
}

}  // namespace
}  // namespace tests
