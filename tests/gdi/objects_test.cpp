#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "platform/gdi/font_files.h"
#include "platform/gdi/gdi.h"
#include "tests/gdi/canvas.h"

using namespace tests;
using namespace platform;

namespace {

// What a call on a bad handle answers, and the last error it leaves.
#define EXPECT_REFUSED(call, answer, error)               \
    do {                                                  \
        SetLastError(ERROR_SUCCESS);                      \
        EXPECT_EQ(call, answer);                          \
        EXPECT_EQ(GetLastError(), DWORD{error}) << #call; \
    } while (false)

class Objects : public testing::Test {
  protected:
    ~Objects() override {
        EXPECT_EQ(gdi::DrawingObjectCount(), 0u);
        EXPECT_EQ(gdi::DeviceContextCount(), 0u);
    }
    Platform platform;
};

TEST_F(Objects, EveryCallRefusesAHandleThatIsNone) {
    const HDC stale_dc = CreateCompatibleDC(nullptr);
    ASSERT_TRUE(DeleteDC(stale_dc));
    const HBRUSH stale_brush = CreateSolidBrush(0);
    ASSERT_TRUE(DeleteObject(stale_brush));
    const HBRUSH brush = CreateSolidBrush(0);
    const HDC dc = CreateCompatibleDC(nullptr);
    RECT rectangle{0, 0, 1, 1};
    for (const HDC bad :
         {HDC{}, stale_dc, reinterpret_cast<HDC>(brush), reinterpret_cast<HDC>(-1)}) {
        EXPECT_REFUSED(DeleteDC(bad), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(gdi::DestroyWindowDC(bad), false, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(SelectObject(bad, brush), HGDIOBJ{}, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(FillRect(bad, &rectangle, brush), 0, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(BitBlt(bad, 0, 0, 1, 1, dc, 0, 0, SRCCOPY), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(BitBlt(dc, 0, 0, 1, 1, bad, 0, 0, SRCCOPY), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(TransparentImage(bad, 0, 0, 1, 1, dc, 0, 0, 1, 1, 0), FALSE,
                       ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(TransparentImage(dc, 0, 0, 1, 1, bad, 0, 0, 1, 1, 0), FALSE,
                       ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(DrawTextW(bad, L"a", -1, &rectangle, 0), 0, ERROR_INVALID_HANDLE);
    }
    for (const HGDIOBJ bad : {HGDIOBJ{}, HGDIOBJ{stale_brush}, reinterpret_cast<HGDIOBJ>(-1)}) {
        EXPECT_REFUSED(DeleteObject(bad), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(SelectObject(dc, bad), HGDIOBJ{}, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(GetObjectType(bad), 0u, ERROR_INVALID_HANDLE);
        EXPECT_REFUSED(FillRect(dc, &rectangle, static_cast<HBRUSH>(bad)), 0, ERROR_INVALID_HANDLE);
    }
    EXPECT_REFUSED(DeleteObject(dc), FALSE, ERROR_INVALID_HANDLE);
    EXPECT_REFUSED(DestroyIcon(reinterpret_cast<HICON>(brush)), FALSE, ERROR_INVALID_HANDLE);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_TRUE(DeleteObject(brush));
}

TEST_F(Objects, WhatIsSelectedCannotBeDeleted) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const LOGFONTW description = Describe(L"Arial", {9, 26, 500});
    const HGDIOBJ objects[] = {CreateCompatibleBitmap(dc, 4, 4), CreateSolidBrush(0),
                               CreateFontIndirectW(&description)};
    for (const HGDIOBJ object : objects) {
        const HGDIOBJ displaced = SelectObject(dc, object);
        ASSERT_NE(displaced, nullptr);
        EXPECT_EQ(SelectObject(dc, object), object);
        EXPECT_FALSE(DeleteObject(object));
        EXPECT_EQ(SelectObject(dc, displaced), object);
        EXPECT_TRUE(DeleteObject(object));
        EXPECT_FALSE(DeleteObject(object));
    }
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(Objects, ABitmapIsInOneMemoryDeviceContextAtATime) {
    const HDC first = CreateCompatibleDC(nullptr);
    const HDC second = CreateCompatibleDC(nullptr);
    Canvas window(4, 4);
    const HBITMAP bitmap = CreateCompatibleBitmap(first, 4, 4);
    const HGDIOBJ displaced = SelectObject(first, bitmap);
    EXPECT_EQ(SelectObject(second, bitmap), nullptr);
    EXPECT_EQ(SelectObject(window.dc, bitmap), nullptr);
    SelectObject(first, displaced);
    EXPECT_EQ(SelectObject(second, bitmap), displaced);
    EXPECT_TRUE(DeleteDC(first));
    EXPECT_TRUE(DeleteDC(second));
    EXPECT_TRUE(DeleteObject(bitmap));
}

TEST_F(Objects, SizesNobodyHasMemoryForAreRefused) {
    Canvas window(1, 1);
    EXPECT_REFUSED(CreateCompatibleBitmap(window.dc, 0x7FFFFFFF, 0x7FFFFFFF), HBITMAP{},
                   ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_REFUSED(CreateCompatibleBitmap(window.dc, -1, 5), HBITMAP{}, ERROR_INVALID_PARAMETER);
}

TEST_F(Objects, AfterShutdownHandlesAreStaleAndDrawingStartsAnew) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBRUSH brush = CreateSolidBrush(0);
    gdi::Shutdown();
    EXPECT_REFUSED(DeleteDC(dc), FALSE, ERROR_INVALID_HANDLE);
    EXPECT_REFUSED(DeleteObject(brush), FALSE, ERROR_INVALID_HANDLE);
    Canvas canvas(100, 40);
    const FontOn font(canvas.dc, {9, 26, 500});
    EXPECT_EQ(Draw(canvas.dc, L"国", {0, 0, 100, 40}, 0), 26);
}

TEST(Fonts, AMissingFontFileIsNamedWithItsPackage) {
    namespace fs = std::filesystem;
    const fs::path directory = fs::path(testing::TempDir()) / "fonts";
    fs::create_directories(directory / "below");
    std::map<gdi::Typeface, fs::path> files;
    std::string problem;
    EXPECT_FALSE(gdi::FindFontFiles(directory, files, problem));
    for (const char* name : {"LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf",
                             "LiberationMono-Regular.ttf", "LiberationMono-Bold.ttf"})
        std::ofstream(directory / "below" / name) << "";
    EXPECT_FALSE(gdi::FindFontFiles(directory, files, problem));
    EXPECT_NE(problem.find("ipag.ttf"), std::string::npos);
    EXPECT_NE(problem.find("fonts-ipafont-gothic"), std::string::npos);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
    std::ofstream(directory / "ipag.ttf") << "";
    EXPECT_TRUE(gdi::FindFontFiles(directory, files, problem));
    EXPECT_FALSE(gdi::FindFontFiles(directory / "nowhere", files, problem));
    fs::remove_all(directory);
    EXPECT_TRUE(gdi::CheckFonts(problem)) << problem;
    gdi::Shutdown();
}

TEST_F(Objects, StockObjectsOutliveTheirDeletion) {
    for (const int index : {WHITE_BRUSH, BLACK_BRUSH, NULL_BRUSH, SYSTEM_FONT}) {
        const HGDIOBJ object = GetStockObject(index);
        EXPECT_TRUE(DeleteObject(object));
        EXPECT_EQ(GetStockObject(index), object);
        EXPECT_NE(GetObjectType(object), 0u);
    }
    EXPECT_REFUSED(GetStockObject(DEFAULT_PALETTE), HGDIOBJ{}, ERROR_NOT_SUPPORTED);
    EXPECT_TRUE(DeleteObject(GetSysColorBrush(COLOR_WINDOW)));
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), RGB(255, 255, 255));
    EXPECT_EQ(GetSysColorBrush(1000), nullptr);
}

}  // namespace
