#include <gtest/gtest.h>

#include "tests/gdi/canvas.h"

using namespace tests;
using platform::gdi::Surface;

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kMagenta = RGB(255, 0, 255);
using Strings = std::vector<std::wstring>;

class Blits : public testing::Test {
  protected:
    Platform platform;
    Canvas canvas{100, 80};

    // Pixels that all differ.
    static void Number(Surface& surface) {
        for (int y = 0; y < surface.height(); ++y)
            for (int x = 0; x < surface.width(); ++x)
                surface.row(y)[x] = std::uint32_t(y * 1000 + x + 1);
    }
    void Write(Canvas& target, const std::wstring& text, int x, int y) {
        const FontOn font(target.dc, {5, 20, 500});
        Draw(target.dc, text, {x, y, x + 60, y + 20}, DT_SINGLELINE);
    }
};

TEST_F(Blits, CopiesAreClippedOnBothSides) {
    Canvas source(30, 30);
    Number(*source.surface);
    struct Case {
        int x, y, width, height, source_x, source_y;
    };
    constexpr Case kCases[] = {
        {10, 10, 20, 20, 5, 5},         {-5, -5, 20, 20, 0, 0},     {90, 70, 30, 30, 0, 0},
        {10, 10, 30, 30, 20, 20},       {10, 10, 30, 30, -10, -10}, {200, 10, 5, 5, 0, 0},
        {10, 10, 5, 5, 40, 40},         {10, 10, 0, 5, 0, 0},       {2147483600, 0, 100, 5, 0, 0},
        {10, 10, 5, 5, -2147483647, 0},
    };
    for (const Case& c : kCases) {
        canvas.FillWith(RGB(0, 0, 0));
        EXPECT_TRUE(BitBlt(canvas.dc, c.x, c.y, c.width, c.height, source.dc, c.source_x,
                           c.source_y, SRCCOPY));
        for (std::int64_t y = 0; y < 80; ++y)
            for (std::int64_t x = 0; x < 100; ++x) {
                const std::int64_t from_x = x - c.x + c.source_x;
                const std::int64_t from_y = y - c.y + c.source_y;
                const bool copied = x >= c.x && y >= c.y && x < std::int64_t{c.x} + c.width &&
                                    y < std::int64_t{c.y} + c.height && from_x >= 0 &&
                                    from_y >= 0 && from_x < 30 && from_y < 30;
                ASSERT_EQ(canvas.At(int(x), int(y)),
                          copied ? std::uint32_t(from_y * 1000 + from_x + 1) : 0u)
                    << c.x << " at " << x << ", " << y;
            }
    }
}

TEST_F(Blits, RasterOperationsCombineBits) {
    Canvas source(1, 1);
    constexpr std::uint32_t kSource = 0x0F0F0F, kTarget = 0x333333, kPattern = 0x555555;
    struct Case {
        DWORD code;
        std::uint32_t result;
    };
    constexpr Case kCases[] = {
        {SRCCOPY, kSource},
        {SRCPAINT, kSource | kTarget},
        {SRCAND, kSource & kTarget},
        {SRCINVERT, kSource ^ kTarget},
        {SRCERASE, kSource & ~kTarget & 0xFFFFFF},
        {NOTSRCCOPY, ~kSource & 0xFFFFFF},
        {NOTSRCERASE, ~(kSource | kTarget) & 0xFFFFFF},
        {MERGECOPY, kSource & kPattern},
        {MERGEPAINT, (~kSource | kTarget) & 0xFFFFFF},
        {PATCOPY, kPattern},
        {PATPAINT, (kPattern | ~kSource | kTarget) & 0xFFFFFF},
        {PATINVERT, kPattern ^ kTarget},
        {DSTINVERT, ~kTarget & 0xFFFFFF},
        {BLACKNESS, 0},
        {WHITENESS, 0xFFFFFF},
    };
    const HBRUSH brush = CreateSolidBrush(kPattern);
    const HGDIOBJ displaced = SelectObject(canvas.dc, brush);
    for (const Case& row : kCases) {
        source.surface->row(0)[0] = kSource;
        canvas.surface->row(0)[0] = kTarget;
        EXPECT_TRUE(BitBlt(canvas.dc, 0, 0, 1, 1, source.dc, 0, 0, row.code));
        EXPECT_EQ(canvas.At(0, 0), row.result) << std::hex << row.code;
    }
    SelectObject(canvas.dc, displaced);
    DeleteObject(brush);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(PatBlt(canvas.dc, 0, 0, 1, 1, SRCCOPY));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(PatBlt(canvas.dc, 0, 0, 1, 1, WHITENESS));
    EXPECT_EQ(canvas.At(0, 0), 0xFFFFFFu);
    EXPECT_FALSE(StretchBlt(canvas.dc, 0, 0, -5, 5, source.dc, 0, 0, 1, 1, SRCCOPY));
    EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
}

TEST_F(Blits, ATextStandsUntilItIsPaintedOverWholly) {
    Write(canvas, L"国", 10, 10);
    ASSERT_EQ(canvas.Texts(), Strings{L"国"});
    const RECT box = canvas.surface->texts()[0].box;
    const RECT ink = canvas.InkBox();
    EXPECT_TRUE(EqualRect(&box, &ink));
    EXPECT_EQ(canvas.surface->texts()[0].color, RGB(255, 255, 255));

    canvas.FillWith(kRed, {box.left + 1, box.top, box.right, box.bottom});
    EXPECT_EQ(canvas.Texts(), Strings{L"国"});
    Write(canvas, L"国国国", 10, 10);
    EXPECT_EQ(canvas.Texts(), (Strings{L"国", L"国国国"}));
    canvas.FillWith(kRed, box);
    EXPECT_EQ(canvas.Texts(), Strings{L"国国国"});
    PatBlt(canvas.dc, 0, 0, 100, 80, DSTINVERT);
    EXPECT_EQ(canvas.Texts(), Strings{L"国国国"});
    PatBlt(canvas.dc, 0, 0, 100, 80, BLACKNESS);
    EXPECT_EQ(canvas.Texts(), Strings{});
}

TEST_F(Blits, FillsAreClippedAndSystemColoursAreBrushes) {
    const RECT beyond{-50, -50, 500, 500};
    EXPECT_TRUE(FillRect(canvas.dc, &beyond, (HBRUSH)(std::uintptr_t)(COLOR_WINDOW + 1)));
    EXPECT_EQ(canvas.At(0, 0), 0xFFFFFFu);
    EXPECT_EQ(canvas.At(99, 79), 0xFFFFFFu);
    EXPECT_TRUE(FillRect(canvas.dc, &beyond, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))));
    EXPECT_EQ(canvas.At(50, 50), 0xFFFFFFu);
    const RECT extreme{-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 1};
    EXPECT_TRUE(FillRect(canvas.dc, &extreme, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))));
    EXPECT_EQ(canvas.At(99, 0), 0u);
    EXPECT_EQ(canvas.At(99, 1), 0xFFFFFFu);
}

TEST_F(Blits, ASurfaceCanBeCopiedOntoItself) {
    for (const POINT offset : {POINT{3, 2}, POINT{-3, -2}, POINT{4, 0}, POINT{0, -5}}) {
        Number(*canvas.surface);
        EXPECT_TRUE(
            BitBlt(canvas.dc, 20 + offset.x, 20 + offset.y, 30, 30, canvas.dc, 20, 20, SRCCOPY));
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 30; ++x)
                ASSERT_EQ(canvas.At(20 + x + offset.x, 20 + y + offset.y),
                          std::uint32_t((20 + y) * 1000 + 20 + x + 1));
    }
}

TEST_F(Blits, StretchingTakesTheNearestPixel) {
    Canvas source(4, 2);
    Number(*source.surface);
    EXPECT_TRUE(StretchBlt(canvas.dc, 10, 10, 8, 8, source.dc, 0, 0, 4, 2, SRCCOPY));
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            ASSERT_EQ(canvas.At(10 + x, 10 + y), std::uint32_t((y / 4) * 1000 + x / 2 + 1));
    EXPECT_EQ(canvas.At(18, 10), 0u);
}

TEST_F(Blits, TransparentPixelsLeaveWhatIsUnderThem) {
    Canvas source(4, 4);
    source.FillWith(kMagenta);
    source.FillWith(kRed, {1, 1, 3, 3});
    canvas.FillWith(RGB(0, 0, 255));
    EXPECT_TRUE(TransparentImage(canvas.dc, 10, 10, 8, 8, source.dc, 0, 0, 4, 4, kMagenta));
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            const bool inside = x >= 2 && x < 6 && y >= 2 && y < 6;
            ASSERT_EQ(canvas.At(10 + x, 10 + y), inside ? 0xFF0000u : 0x0000FFu);
        }
    const HDC memory = CreateCompatibleDC(canvas.dc);
    const HBITMAP bitmap = CreateCompatibleBitmap(canvas.dc, 2, 2);
    EXPECT_TRUE(TransparentImage(canvas.dc, 0, 0, 2, 2, bitmap, 0, 0, 2, 2, kMagenta));
    EXPECT_EQ(canvas.At(1, 1), 0u);
    DeleteObject(bitmap);
    DeleteDC(memory);
}

TEST_F(Blits, AnImageWithHolesLeavesTheTextUnderIt) {
    Canvas image(100, 80);
    image.FillWith(kRed);
    Write(canvas, L"国", 10, 10);
    image.FillWith(kMagenta, {0, 0, 1, 1});
    TransparentImage(canvas.dc, 0, 0, 100, 80, image.dc, 0, 0, 100, 80, kMagenta);
    EXPECT_EQ(canvas.Texts(), Strings{L"国"});
    image.FillWith(kRed);
    TransparentImage(canvas.dc, 0, 0, 100, 80, image.dc, 0, 0, 100, 80, kMagenta);
    EXPECT_EQ(canvas.Texts(), Strings{});
}

TEST_F(Blits, TheSameTextDrawnTwiceStandsOnce) {
    Write(canvas, L"国", 10, 10);
    Write(canvas, L"国", 10, 10);
    Write(canvas, L"国", 40, 10);
    EXPECT_EQ(canvas.Texts(), (Strings{L"国", L"国"}));
}

TEST_F(Blits, TheWindowIsToldWithoutALockHeld) {
    std::size_t seen = 0;
    auto surface = std::make_shared<Surface>(10, 10);
    const HDC dc = platform::gdi::CreateWindowDC(surface, {0, 0, 10, 10}, [&] {
        const auto lock = platform::gdi::LockGdi();
        ++seen;
    });
    PatBlt(dc, 0, 0, 10, 10, WHITENESS);
    EXPECT_EQ(seen, 1u);
    EXPECT_TRUE(platform::gdi::DestroyWindowDC(dc));
}

}  // namespace
