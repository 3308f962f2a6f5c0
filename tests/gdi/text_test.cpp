#include <random>
#include <regex>
#include <set>

#include "platform/kernel/text.h"
#include "tests/gdi/canvas.h"
#include "tests/model/wizard_tables.h"
#include "tests/support/cases.h"

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

TEST_F(Text, ALinesHeightHoldsItsInk) {
    const std::pair<FontSize, std::wstring> cases[] = {{{9, 26, 500}, L"\"gp_card\" 100%"},
                                                       {{10, 36, 600}, L"<<Update>>"},
                                                       {{12, 40, 500}, L"電源を切らないで下さい。"},
                                                       {{22, 44, 600}, L"「DVR用SDカード」"}};
    for (const auto& [size, text] : cases) {
        canvas.UseFont(size);
        const auto ink = [&, height = size.height, text = text](UINT format) {
            canvas.FillWith(RGB(0, 0, 0));
            canvas.Draw(text, {0, 100, 800, 100 + height}, DT_CENTER | format);
            return canvas.InkBox();
        };
        const RECT clipped = ink(0);
        const RECT whole = ink(DT_NOCLIP);
        EXPECT_TRUE(EqualRect(&clipped, &whole)) << testing::PrintToString(text);
    }
}

TEST_F(Text, EveryCharacterOfTheWizardHasAGlyph) {
    std::wstring texts;
    const auto add = [&](const wchar_t* text) { texts += text ? text : L""; };
    for (const auto& control : model::Controls())
        add(control.text);
    for (const auto& screen : model::Screens()) {
        std::ranges::for_each(screen.lines, add);
        std::ranges::for_each(screen.others, add, &model::Setting::text);
    }
    const auto picture = [&](wchar_t character) {
        canvas.FillWith(RGB(0, 0, 0));
        canvas.Draw({character}, {0, 0, 40, 40}, DT_NOPREFIX);
        return canvas.AllPixels();
    };
    const auto missing = picture(wchar_t{0x10FFFD});
    for (const wchar_t character : std::set(texts.begin(), texts.end()))
        EXPECT_NE(picture(character), missing) << std::hex << unsigned(character);
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

TEST_F(Text, IsShapedOnceAndKeepsItsWidth) {
    const int width = canvas.WidthOf(L"Update Percent : 7%");
    const auto shaped_by_drawing = [&](int texts) {
        const std::size_t before = gdi::ShapedLineCount();
        for (int number = 0; number < texts; ++number)
            canvas.Draw(L"国" + std::to_wstring(number), {0, 0, 400, 26});
        return gdi::ShapedLineCount() - before;
    };
    EXPECT_EQ(shaped_by_drawing(40), 40U);
    EXPECT_EQ(shaped_by_drawing(40), 0U);
    shaped_by_drawing(500);
    EXPECT_EQ(canvas.WidthOf(L"Update Percent : 7%"), width);
}

// Short and long code points alike: controls, combining marks, right-to-left scripts, halves of
// pairs, and what is no character.
TEST_F(Text, AnyTextIsMeasuredAndDrawn) {
    std::mt19937 random(1);
    canvas.UseFont({9, 26, 600});
    for (int round = 0; round < 300; ++round) {
        std::wstring text;
        for (auto length = 1 + random() % 30; length > 0; --length)
            text += static_cast<wchar_t>(random() >> (10 + random() % 15));
        RECT rectangle{0, 0, static_cast<LONG>(random() % 300), 480};
        const int count = static_cast<int>(text.size());
        const int height = DrawTextW(canvas.dc, text.c_str(), count, &rectangle, DT_WORDBREAK);
        EXPECT_TRUE(height >= 0 && height % 26 == 0) << height;
        const int width = canvas.WidthOf(text);
        EXPECT_TRUE(width >= 0 && width <= count * 60) << width;
    }
}

// Ten pixels a full-width character, five a half-width one.
Pixels Picture(const std::wstring& text, int width, UINT format) {
    Canvas canvas(400, 200);
    canvas.UseFont({5, 20, 500}, L"Courier New");
    canvas.Draw(text, {0, 0, width, 200}, format | DT_NOCLIP);
    return canvas.AllPixels();
}

void ExpectBroken(const std::wstring& text, int width, const std::wstring& lines) {
    EXPECT_TRUE(Picture(text, width, DT_WORDBREAK) == Picture(lines, 400, 0))
        << testing::PrintToString(text);
}

// The text between the first and the last bracket, with line ends for those between.
std::wstring Unbracketed(const std::string& text) {
    const std::size_t first = text.find('[') + 1;
    const std::string inner = text.substr(first, text.rfind(']') - first);
    return kernel::FromUtf8(std::regex_replace(inner, std::regex("\\]\\["), "\n"));
}

PLATFORM_TEST(LineBreak, ComesWhereAReaderExpectsIt) {
    const auto cases = CasesFrom(GDI_CASES "/line-breaks.txt");
    ASSERT_FALSE(cases.empty());
    for (const auto& [text, lines] : cases)
        ExpectBroken(Unbracketed(text), std::stoi(text), Unbracketed(lines));
    for (const wchar_t mark :
         std::wstring(L"、。，．・：；？！゛゜ヽヾゝゞ々ー―…‥〜～）〕］｝〉》」』】’”°′″℃％"
                      L"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶ｡｣､･ｧｨｩｪｫｬｭｮｯｰﾞﾟ!),.:;?]}%"))
        ExpectBroken(std::wstring(L"ああ") + mark, 20, std::wstring(L"あ\nあ") + mark);
}

}  // namespace
}  // namespace tests
