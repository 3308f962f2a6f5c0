#include "tests/gdi/canvas.h"

namespace tests {
namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);

class Blits : public testing::Test {
  protected:
    // Pixels that all differ.
    static void Number(const Canvas& target) {
        for (int y = 0; y < target.surface->height(); ++y)
            for (int x = 0; x < target.surface->width(); ++x)
                target.surface->row(y)[x] = std::uint32_t(y * 1000 + x + 1);
    }
    void Write(const std::wstring& text, int x) { canvas.Draw(text, {x, 10, 100, 30}); }

    Platform platform;
    Canvas canvas{100, 80};
};

TEST_F(Blits, CopiesAreClippedOnBothSides) {
    Canvas source(30, 30);
    Number(source);
    constexpr struct {
        int x, y, width, height, source_x, source_y;
    } kCases[] = {
        {10, 10, 20, 20, 5, 5},         {-5, -5, 20, 20, 0, 0},     {90, 70, 30, 30, 0, 0},
        {10, 10, 30, 30, 20, 20},       {10, 10, 30, 30, -10, -10}, {200, 10, 5, 5, 0, 0},
        {10, 10, 5, 5, 40, 40},         {10, 10, 0, 5, 0, 0},       {2147483600, 0, 100, 5, 0, 0},
        {10, 10, 5, 5, -2147483647, 0},
    };
    for (const auto& c : kCases) {
        canvas.FillWith(RGB(0, 0, 0));
        EXPECT_TRUE(BitBlt(canvas.dc, c.x, c.y, c.width, c.height, source.dc, c.source_x,
                           c.source_y, SRCCOPY));
        Pixels expected(100 * 80);
        for (std::int64_t y = 0; y < 30; ++y)
            for (std::int64_t x = 0; x < 30; ++x) {
                const std::int64_t column = x - c.source_x, row = y - c.source_y;
                const std::int64_t to_x = c.x + column, to_y = c.y + row;
                if (column >= 0 && row >= 0 && column < c.width && row < c.height && to_x >= 0 &&
                    to_y >= 0 && to_x < 100 && to_y < 80)
                    expected[std::size_t(to_y * 100 + to_x)] = std::uint32_t(y * 1000 + x + 1);
            }
        EXPECT_TRUE(canvas.AllPixels() == expected) << "case " << &c - kCases;
    }
    ExpectFails(ERROR_NOT_SUPPORTED, [&] {
        return BitBlt(canvas.dc, 0, 0, 5, 5, source.dc, 0, 0, SRCCOPY + 1) ||
               BitBlt(canvas.dc, 0, 0, -5, 5, source.dc, 0, 0, SRCCOPY) ||
               TransparentImage(canvas.dc, 0, 0, 5, 5, source.dc, 0, 0, 4, 5, 0) ||
               TransparentImage(canvas.dc, 0, 0, 5, 5, canvas.dc, 9, 0, 5, 5, 0);
    });
}

TEST_F(Blits, ASurfaceCanBeCopiedOntoItself) {
    for (const POINT offset : {POINT{3, 2}, POINT{-3, -2}, POINT{4, 0}, POINT{0, -5}}) {
        Number(canvas);
        EXPECT_TRUE(
            BitBlt(canvas.dc, 20 + offset.x, 20 + offset.y, 30, 30, canvas.dc, 20, 20, SRCCOPY));
        for (int y = 20; y < 50; ++y)
            for (int x = 20; x < 50; ++x)
                ASSERT_EQ(canvas.At(x + offset.x, y + offset.y), std::uint32_t(y * 1000 + x + 1));
    }
}

TEST_F(Blits, TextRemainsUntilItsWholeBoxIsPaintedOver) {
    canvas.UseFont({5, 20, 500});
    Write(L"国", 10);
    Write(L"国", 10);
    Write(L"国", 40);
    ASSERT_EQ(canvas.Texts(), (Strings{L"国", L"国"})) << "a text drawn twice counts once";
    canvas.FillWith(RGB(0, 0, 0), {30, 0, 100, 80});
    const RECT box = canvas.surface->texts()[0].box;
    const RECT ink = canvas.InkBox();
    EXPECT_TRUE(EqualRect(&box, &ink));
    EXPECT_EQ(canvas.surface->texts()[0].color, RGB(255, 255, 255));

    canvas.FillWith(kRed, {box.left + 1, box.top, box.right, box.bottom});
    Write(L"国国国", 10);
    EXPECT_EQ(canvas.Texts(), (Strings{L"国", L"国国国"}));
    canvas.FillWith(kRed, box);
    EXPECT_EQ(canvas.Texts(), Strings{L"国国国"});
}

TEST_F(Blits, FillsAreClippedAndSystemColoursAreBrushes) {
    const RECT everything{-50, -50, 500, 500};
    EXPECT_TRUE(FillRect(canvas.dc, &everything, (HBRUSH)(std::uintptr_t)(COLOR_WINDOW + 1)));
    EXPECT_TRUE(canvas.AllPixels() == Pixels(100 * 80, 0xFFFFFF));
    canvas.FillWith(RGB(0, 0, 0), {-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 1});
    EXPECT_EQ(canvas.At(99, 0), 0u);
    EXPECT_EQ(canvas.At(99, 1), 0xFFFFFFu);
    EXPECT_EQ(canvas.drawn, 2);
}

TEST_F(Blits, TransparentPixelsKeepPixelsAndTextsBelow) {
    constexpr COLORREF kKey = RGB(1, 2, 3);
    Canvas image(8, 8);
    image.FillWith(kKey);
    image.FillWith(kRed, {2, 2, 6, 6});
    canvas.FillWith(RGB(0, 0, 255));
    canvas.UseFont({1, 4, 500});
    canvas.Draw(L"国", {12, 12, 16, 16});
    const auto paint = [&] {
        EXPECT_TRUE(TransparentImage(canvas.dc, 10, 10, 8, 8, image.dc, 0, 0, 8, 8, kKey));
    };
    paint();
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            ASSERT_EQ(canvas.At(10 + x, 10 + y),
                      x >= 2 && x < 6 && y >= 2 && y < 6 ? 0xFF0000u : 0x0000FFu);
    EXPECT_EQ(canvas.Texts(), Strings{L"国"}) << "there are holes";
    image.FillWith(kRed);
    paint();
    EXPECT_EQ(canvas.Texts(), Strings{});
}

}  // namespace
}  // namespace tests
