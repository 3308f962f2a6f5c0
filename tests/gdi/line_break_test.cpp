#include "platform/gdi/line_break.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

using platform::gdi::BreakLines;
using platform::gdi::LineOfText;

namespace {

// Ten pixels a full-width character, five a half-width one.
std::vector<std::wstring> Break(const std::wstring& text, double width) {
    std::vector<double> edges{0};
    for (const wchar_t character : text)
        edges.push_back(edges.back() + (character < 0x2000 ? 5 : 10));
    std::vector<std::wstring> lines;
    for (const LineOfText& line : BreakLines(text, edges, width))
        lines.push_back(text.substr(line.begin, line.end - line.begin));
    return lines;
}

struct Case {
    const char* name;
    std::wstring text;
    double width;
    std::vector<std::wstring> lines;
};

class LineBreak : public testing::TestWithParam<Case> {};

TEST_P(LineBreak, BreaksWhereAReaderExpects) {
    EXPECT_EQ(Break(GetParam().text, GetParam().width), GetParam().lines);
}

const Case kCases[] = {
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
    {"WordWiderThanTheLineSticksOut", L"a wonder b", 20, {L"a", L"wonder", L"b"}},
    {"QuotesClingToTheirWord", L"ああ\"ab\"ああ", 30, {L"ああ", L"\"ab\"あ", L"あ"}},
    {"TypographicQuotes", L"あああ“ab”あ", 40, {L"あああ", L"“ab”あ"}},
    {"NothingButBlanks", L"   ", 5, {L"   "}},
    {"Empty", L"", 5, {L""}},
};

INSTANTIATE_TEST_SUITE_P(All, LineBreak, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LineBreaks, EveryCharacterOutsideTheBreaksIsOnOneLine) {
    const std::wstring text = L"  SDカードを、「DVR」から 抜いて（必ず）下さい。OK? yes、はい。";
    for (int width = 0; width < 400; ++width) {
        std::wstring joined;
        for (const std::wstring& line : Break(text, width))
            joined += line;
        std::wstring expected = text;
        // Only blanks may be lost, and only where a line ends.
        std::erase(joined, L' ');
        std::erase(expected, L' ');
        ASSERT_EQ(joined, expected) << width;
    }
}

}  // namespace
