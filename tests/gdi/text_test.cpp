#include <random>

#include "tests/gdi/canvas.h"

namespace tests {
namespace {

class Text : public testing::Test {
  protected:
    Text() { canvas.UseFont({9, 26, 500}); }

    Platform platform;
    Canvas canvas{800, 480};
};

TEST_F(Text, AFullWidthCharacterIsTwiceTheWidthAndOnePixelMoreWhenBold) {
    constexpr std::pair<FontSize, int> kCases[] = {
        {{9, 26, 500}, 18},  {{9, 26, 599}, 18},  {{9, 26, 600}, 19},  {{10, 24, 500}, 20},
        {{10, 36, 600}, 21}, {{12, 40, 500}, 24}, {{13, 40, 600}, 27}, {{15, 44, 600}, 31},
        {{16, 36, 600}, 33}, {{22, 44, 600}, 45}, {{22, 44, 0}, 44},
    };
    for (const auto& [size, full_width] : kCases) {
        canvas.UseFont(size);
        for (const std::wstring text :
             {L"漢", L"ファームウェア", L"電源を切らないで下さい。", L"「」、。ー"})
            EXPECT_EQ(canvas.WidthOf(text), full_width * int(text.size()))
                << size.width << " " << size.weight;
    }
}

TEST_F(Text, PlacesTheTextAsTheFormatSays) {
    canvas.UseFont({10, 30, 500});
    canvas.Draw(L"国", {0, 0, 20, 30});
    const RECT at_origin = canvas.InkBox();
    const auto expect = [&](UINT format, int x, int y) {
        canvas.FillWith(RGB(0, 0, 0));
        EXPECT_EQ(canvas.Draw(L"国", {100, 100, 300, 200}, format), y + 30 - 100) << format;
        const RECT ink = canvas.InkBox();
        EXPECT_EQ(ink.left - at_origin.left, x) << format;
        EXPECT_EQ(ink.top - at_origin.top, y) << format;
    };
    expect(DT_LEFT | DT_TOP, 100, 100);
    expect(DT_CENTER, 190, 100);
    expect(DT_RIGHT, 280, 100);
    expect(DT_VCENTER, 100, 135);
    expect(DT_VCENTER | DT_WORDBREAK, 100, 135);
    expect(DT_VCENTER | DT_SINGLELINE | DT_CENTER, 190, 135);
    expect(DT_BOTTOM | DT_SINGLELINE, 100, 170);
}

TEST_F(Text, DrawsTheGivenNumberOfCharactersWithoutPrefixMarks) {
    RECT rectangle{0, 60, 400, 86};
    EXPECT_EQ(DrawTextW(canvas.dc, L"国国国", 2, &rectangle, 0), 26);
    EXPECT_LE(canvas.InkBox().right, 36);
    EXPECT_EQ(DrawTextW(canvas.dc, L"", -1, &rectangle, 0), 0);
    EXPECT_EQ(DrawTextW(canvas.dc, nullptr, 0, &rectangle, 0), 0);
    canvas.Draw(L"a&b && c", {0, 0, 400, 26});
    canvas.Draw(L"a&b && c", {0, 30, 400, 56}, DT_NOPREFIX);
    EXPECT_EQ(canvas.Texts(), (Strings{L"国国", L"ab & c", L"a&b && c"}));
}

TEST_F(Text, InvalidArgumentsAreErrors) {
    const auto draw = [&](const wchar_t* text, int count, RECT rectangle, UINT format) {
        return DrawTextW(canvas.dc, text, count, &rectangle, format);
    };
    constexpr RECT kRoom{0, 0, 100, 26};
    ExpectFails(ERROR_NOT_SUPPORTED, [&] { return draw(L"a", -1, kRoom, DT_EXPANDTABS); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return DrawTextW(canvas.dc, L"a", -1, NULL, 0); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return draw(L"a", -2, kRoom, 0); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return draw(nullptr, 3, kRoom, 0); });
    EXPECT_EQ(draw(L"a", -1, {0, 0, 0x7FFFFFFF, 26}, DT_RIGHT), 0);
    ExpectFails(ERROR_NOT_SUPPORTED, [] { return MakeFont({9, 26, 500}, L"Arial", 1); });
    ExpectFails(ERROR_INVALID_PARAMETER, [] { return MakeFont({9, 100000, 500}); });
    EXPECT_EQ(canvas.drawn, 0);
}

TEST_F(Text, CacheOfManyTextsKeepsWidths) {
    const int width = canvas.WidthOf(L"Update Percent : 7%");
    for (int i = 0; i < 1000; ++i)
        canvas.Draw(L"国" + std::to_wstring(i % 500), {0, 0, 400, 26});
    EXPECT_EQ(canvas.WidthOf(L"Update Percent : 7%"), width);
}

// Controls, combining marks, right-to-left scripts, halves of pairs, and what is no character.
TEST_F(Text, AnyTextIsMeasuredAndDrawn) {
    constexpr std::pair<int, int> kRanges[] = {
        {-2, 0x24F},      {0x300, 0x36F},     {0x5D0, 0x6FF},      {0x900, 0xE7F},
        {0x2000, 0x206F}, {0x3000, 0x30FF},   {0x4E00, 0x4F00},    {0xD7F0, 0xE010},
        {0xFE00, 0xFFFF}, {0x1F300, 0x1F700}, {0x10FFF0, 0x110010}};
    std::mt19937 random(1);
    const auto below = [&](std::size_t limit) { return int(random() % limit); };
    canvas.UseFont({9, 26, 600});
    for (int round = 0; round < 300; ++round) {
        std::wstring text;
        for (int length = 1 + below(30); length > 0; --length) {
            const auto [first, last] = kRanges[below(std::size(kRanges))];
            text += wchar_t(first + below(std::size_t(last - first)));
        }
        RECT rectangle{0, 0, below(300), 480};
        const int count = int(text.size());
        const int height = DrawTextW(canvas.dc, text.c_str(), count, &rectangle, DT_WORDBREAK);
        EXPECT_TRUE(height >= 0 && height % 26 == 0) << height;
        const int width = canvas.WidthOf(text);
        EXPECT_TRUE(width >= 0 && width <= count * 60) << width;
    }
}

}  // namespace
}  // namespace tests
