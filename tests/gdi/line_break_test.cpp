#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/gdi/canvas.h"

using namespace tests;

namespace {

// Ten pixels a full-width character, five a half-width one.
constexpr FontSize kTenByFive{5, 20, 500};
constexpr RECT kRoom{0, 0, 400, 200};

struct BreakCase {
    const char* name;
    std::wstring text;
    int width;
    std::vector<std::wstring> lines;
};

class LineBreak : public testing::TestWithParam<BreakCase> {
  protected:
    Platform platform;
};

std::vector<std::uint32_t> Picture(const std::wstring& text, const RECT& rectangle, UINT format) {
    Canvas canvas(kRoom.right, kRoom.bottom);
    const FontOn font(canvas.dc, kTenByFive, RGB(255, 255, 255), L"Courier New");
    Draw(canvas.dc, text, rectangle, format | DT_NOCLIP);
    const auto pixels = canvas.surface->pixels();
    return {pixels.begin(), pixels.end()};
}

TEST_P(LineBreak, BreaksWhereAReaderExpects) {
    std::wstring lines;
    for (const std::wstring& line : GetParam().lines)
        lines += line + L"\n";
    EXPECT_TRUE(Picture(GetParam().text, {0, 0, GetParam().width, 200}, DT_WORDBREAK) ==
                Picture(lines, kRoom, 0));
}

const BreakCase kBreakCases[] = {
    {"Fits", L"あいうえお", 50, {L"あいうえお"}},
    {"ExactFitThenOneMore", L"あいうえおか", 50, {L"あいうえお", L"か"}},
    {"CommaNeverFirst", L"あいうえお、か", 50, {L"あいうえ", L"お、か"}},
    {"FullStopNeverFirst", L"あいうえお。", 50, {L"あいうえ", L"お。"}},
    {"ProlongedSoundNeverFirst", L"カカカアデータ", 50, {L"カカカア", L"データ"}},
    {"SmallTsuNeverFirst", L"ああああああって", 60, {L"あああああ", L"あって"}},
    {"SmallKatakanaNeverFirst", L"アアアフェ", 40, {L"アアア", L"フェ"}},
    {"ClosingBracketNeverFirst", L"ああ「ああ」あ", 50, {L"ああ「あ", L"あ」あ"}},
    {"OpeningBracketNeverLast", L"ああああ「あ」", 50, {L"ああああ", L"「あ」"}},
    {"SeveralClosersStayTogether", L"あああ」。い", 40, {L"ああ", L"あ」。い"}},
    {"LatinWordStaysWhole", L"ああRESETああ", 40, {L"ああ", L"RESETあ", L"あ"}},
    {"LatinAtBlanks", L"to the end", 35, {L"to the", L"end"}},
    {"BlanksAtTheBreakGo", L"to   end", 20, {L"to", L"end"}},
    {"LeadingBlanksStay", L"  ab cd", 20, {L"  ab", L"cd"}},
    {"LeadingBlanksAloneAreNoLine", L" ああああ", 12, {L" あ", L"あ", L"あ", L"あ"}},
    {"WordWiderThanTheLineComesApart", L"a wonder b", 20, {L"a", L"wond", L"er b"}},
    {"MarksStayAtAWordThatComesApart", L"(wonder)", 15, {L"(wo", L"nde", L"r)"}},
    {"WhatCannotBreakSticksOut", L"あ」。い", 20, {L"あ」。", L"い"}},
    {"QuotesClingToTheirNeighbours", L"ああ\"ab\"ああ", 40, {L"あ", L"あ\"ab\"あ", L"あ"}},
    {"TypographicQuotes", L"あああ“ab”あ", 40, {L"ああ", L"あ“ab”あ"}},
    {"NothingButBlanks", L"   ", 5, {L"   "}},
    {"Empty", L"", 5, {L""}},
};

INSTANTIATE_TEST_SUITE_P(All, LineBreak, testing::ValuesIn(kBreakCases),
                         [](const auto& row) { return std::string(row.param.name); });

class LineBreaks : public testing::Test {
  protected:
    Platform platform;
};

TEST_F(LineBreaks, SomeMarksNeverBeginALine) {
    for (const wchar_t mark :
         std::wstring(L"、。，．・：；？！゛゜ヽヾゝゞ々ー―…‥〜～）〕］｝〉》」』】’”°′″℃％"
                      L"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶ｡｣､･ｧｨｩｪｫｬｭｮｯｰﾞﾟ!),.:;?]}%")) {
        const auto picture = Picture(std::wstring(L"ああ") + mark, {0, 0, 20, 200}, DT_WORDBREAK);
        EXPECT_TRUE(picture == Picture(std::wstring(L"あ\nあ") + mark, kRoom, 0))
            << std::hex << unsigned(mark);
    }
}

}  // namespace
