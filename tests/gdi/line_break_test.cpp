#include "tests/gdi/canvas.h"

namespace tests {
namespace {

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

PLATFORM_TEST(LineBreak, ComesWhereAReaderExpectsIt) {
    const std::tuple<LPCWSTR, int, LPCWSTR> cases[] = {
        {L"あいうえお", 50, L"あいうえお"},
        {L"あいうえおか", 50, L"あいうえお\nか"},
        // Characters that never begin or never end a line.
        {L"あいうえお、か", 50, L"あいうえ\nお、か"},
        {L"カカカアデータ", 50, L"カカカア\nデータ"},
        {L"ああ「ああ」あ", 50, L"ああ「あ\nあ」あ"},
        {L"ああああ「あ」", 50, L"ああああ\n「あ」"},
        {L"あああ」。い", 40, L"ああ\nあ」。い"},
        // Words stay whole.
        {L"ああRESETああ", 40, L"ああ\nRESETあ\nあ"},
        {L"to the end", 35, L"to the\nend"},
        // Spaces disappear at a break and stay at the beginning of a line, but are no line alone.
        {L"to   end", 20, L"to\nend"},
        {L"  ab cd", 20, L"  ab\ncd"},
        {L" ああああ", 12, L" あ\nあ\nあ\nあ"},
        {L"   ", 5, L"   "},
        {L"", 5, L""},
        // A word wider than a line is broken, or is wider than its line.
        {L"a wonder b", 20, L"a\nwond\ner b"},
        {L"(wonder)", 15, L"(wo\nnde\nr)"},
        {L"あ」。い", 20, L"あ」。\nい"},
        // Quotes stay with the characters beside them.
        {L"ああ\"ab\"ああ", 40, L"あ\nあ\"ab\"あ\nあ"},
        {L"あああ“ab”あ", 40, L"ああ\nあ“ab”あ"},
    };
    for (const auto& [text, width, lines] : cases)
        ExpectBroken(text, width, lines);
    for (const wchar_t mark :
         std::wstring(L"、。，．・：；？！゛゜ヽヾゝゞ々ー―…‥〜～）〕］｝〉》」』】’”°′″℃％"
                      L"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶ｡｣､･ｧｨｩｪｫｬｭｮｯｰﾞﾟ!),.:;?]}%"))
        ExpectBroken(std::wstring(L"ああ") + mark, 20, std::wstring(L"あ\nあ") + mark);
}

}  // namespace
}  // namespace tests
