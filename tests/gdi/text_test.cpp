#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <random>

#include "tests/gdi/canvas.h"

using namespace tests;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);

class Text : public testing::Test {
  protected:
    Platform platform;
    Canvas canvas{800, 480};

    RECT InkOf(const std::wstring& text, const RECT& rectangle, UINT format) {
        canvas.FillWith(RGB(0, 0, 0));
        Draw(canvas.dc, text, rectangle, format);
        return canvas.InkBox();
    }
};

TEST_F(Text, AFullWidthCharacterIsTwiceTheWidthAndOnePixelMoreWhenBold) {
    struct Case {
        FontSize size;
        int full_width;
    };
    constexpr Case kCases[] = {
        {{9, 26, 500}, 18},  {{9, 26, 599}, 18},  {{9, 26, 600}, 19},  {{10, 24, 500}, 20},
        {{10, 36, 600}, 21}, {{12, 40, 500}, 24}, {{13, 40, 600}, 27}, {{15, 44, 600}, 31},
        {{16, 36, 600}, 33}, {{22, 44, 600}, 45}, {{22, 44, 0}, 44},
    };
    for (const Case& row : kCases) {
        const FontOn font(canvas.dc, row.size);
        for (const wchar_t* text :
             {L"漢", L"ファームウェア", L"電源を切らないで下さい。", L"「」、。ー"})
            EXPECT_EQ(WidthOf(canvas.dc, text), row.full_width * int(std::wcslen(text)))
                << row.size.width << " " << row.size.weight;
    }
}

TEST_F(Text, PlacesTheTextAsTheFormatSays) {
    const FontOn font(canvas.dc, {10, 30, 500});
    constexpr RECT kBox{100, 100, 300, 200};
    const RECT at_origin = InkOf(L"国", {0, 0, 20, 30}, 0);
    struct Case {
        UINT format;
        int x;
        int y;
    };
    constexpr Case kCases[] = {
        {DT_LEFT | DT_TOP, 100, 100},
        {DT_CENTER, 190, 100},
        {DT_RIGHT, 280, 100},
        {DT_VCENTER, 100, 135},
        {DT_VCENTER | DT_WORDBREAK, 100, 135},
        {DT_VCENTER | DT_SINGLELINE | DT_CENTER, 190, 135},
        {DT_BOTTOM | DT_SINGLELINE, 100, 170},
    };
    for (const Case& row : kCases) {
        const RECT ink = InkOf(L"国", kBox, row.format);
        EXPECT_EQ(ink.left - at_origin.left, row.x) << row.format;
        EXPECT_EQ(ink.top - at_origin.top, row.y) << row.format;
    }
}

TEST_F(Text, TakesPrefixMarksOutUnlessToldOtherwise) {
    const FontOn font(canvas.dc, {9, 26, 500});
    Draw(canvas.dc, L"a&b && c", {0, 0, 400, 26}, 0);
    Draw(canvas.dc, L"a&b && c", {0, 30, 400, 56}, DT_NOPREFIX);
    EXPECT_EQ(canvas.Texts(), (std::vector<std::wstring>{L"ab & c", L"a&b && c"}));
}

TEST_F(Text, RefusesWhatItCannotDraw) {
    const FontOn font(canvas.dc, {9, 26, 500});
    RECT rectangle{0, 0, 100, 26};
    SetLastError(0);
    EXPECT_EQ(DrawTextW(canvas.dc, L"a", -1, &rectangle, DT_EXPANDTABS), 0);
    EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(DrawTextW(canvas.dc, L"a", -1, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(DrawTextW(canvas.dc, L"a", -2, &rectangle, 0), 0);
    EXPECT_EQ(DrawTextW(canvas.dc, nullptr, 3, &rectangle, 0), 0);
    RECT endless{0, 0, 0x7FFFFFFF, 26};
    EXPECT_EQ(DrawTextW(canvas.dc, L"a", -1, &endless, DT_RIGHT), 0);

    LOGFONTW description = Describe(L"Arial", {9, 26, 500});
    description.lfItalic = 1;
    EXPECT_EQ(CreateFontIndirectW(&description), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
    description = Describe(L"Arial", {9, 100000, 500});
    EXPECT_EQ(CreateFontIndirectW(&description), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(canvas.drawn, 0);
}

TEST_F(Text, ManyDifferentTextsStayRight) {
    const FontOn font(canvas.dc, {9, 26, 500});
    const int width = WidthOf(canvas.dc, L"Update Percent : 7%");
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < 500; ++i)
            Draw(canvas.dc, L"国" + std::to_wstring(i), {0, 0, 400, 26}, 0);
    EXPECT_EQ(WidthOf(canvas.dc, L"Update Percent : 7%"), width);
}

// Controls, combining marks, right-to-left scripts, halves of pairs, and what is no character.
TEST_F(Text, AnyTextIsMeasuredAndDrawn) {
    constexpr std::pair<int, int> kRanges[] = {
        {-2, 0x24F},      {0x300, 0x36F},     {0x5D0, 0x6FF},      {0x900, 0xE7F},
        {0x2000, 0x206F}, {0x3000, 0x30FF},   {0x4E00, 0x4F00},    {0xD7F0, 0xE010},
        {0xFE00, 0xFFFF}, {0x1F300, 0x1F700}, {0x10FFF0, 0x110010}};
    std::mt19937 random(1);
    const auto below = [&](std::size_t limit) { return int(random() % limit); };
    const FontOn font(canvas.dc, {9, 26, 600});
    for (int round = 0; round < 300; ++round) {
        std::wstring text;
        for (int length = 1 + below(30); length > 0; --length) {
            const auto [first, last] = kRanges[below(std::size(kRanges))];
            text += wchar_t(first + below(std::size_t(last - first)));
        }
        RECT rectangle{0, 0, below(300), 480};
        const int count = int(text.size());
        const int height = DrawTextW(canvas.dc, text.c_str(), count, &rectangle, DT_WORDBREAK);
        EXPECT_GE(height, 0);
        EXPECT_EQ(height % 26, 0);
        SIZE size{};
        ASSERT_TRUE(GetTextExtentPoint32W(canvas.dc, text.c_str(), count, &size));
        EXPECT_GE(size.cx, 0);
        EXPECT_LE(size.cx, count * 60);
    }
}

TEST_F(Text, DrawsAsManyCharactersAsItIsTold) {
    const FontOn font(canvas.dc, {9, 26, 500});
    RECT rectangle{0, 0, 400, 26};
    EXPECT_EQ(DrawTextW(canvas.dc, L"国国国", 2, &rectangle, 0), 26);
    EXPECT_EQ(canvas.Texts(), std::vector<std::wstring>{L"国国"});
    EXPECT_LE(canvas.InkBox().right, 36);
    EXPECT_EQ(DrawTextW(canvas.dc, L"", -1, &rectangle, 0), 0);
    EXPECT_EQ(DrawTextW(canvas.dc, nullptr, 0, &rectangle, 0), 0);
}

}  // namespace
