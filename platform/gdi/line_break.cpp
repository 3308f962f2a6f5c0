#include "platform/gdi/line_break.h"

#include <algorithm>

namespace platform::gdi {
namespace {

// The marks that JIS X 4051 keeps from the beginning of a line, with their ASCII fellows.
constexpr std::wstring_view kNeverFirst =
    L"、。，．・：；？！゛゜ヽヾゝゞ々ー―…‥〜～）〕］｝〉》」』】’”°′″℃％"
    L"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶ｡｣､･ｧｨｩｪｫｬｭｮｯｰﾞﾟ"
    L"!),.:;?]}%";
// And from its end.
constexpr std::wstring_view kNeverLast = L"（〔［｛〈《「『【‘“￥＄｢([{$";
// The same mark opens and closes, in turn.
constexpr std::wstring_view kQuotes = L"\"'";

bool IsOneOf(std::wstring_view set, wchar_t character) {
    return set.find(character) != std::wstring_view::npos;
}

bool IsBlank(wchar_t character) {
    return character == L' ' || character == L'\t' || character == L'\u3000';
}

// Ideographs, kana and full-width forms, between which a line may break without a blank.
bool IsWide(wchar_t character) {
    return (character >= 0x2E80 && character <= 0x9FFF) ||
           (character >= 0xAC00 && character <= 0xD7A3) ||
           (character >= 0xF900 && character <= 0xFAFF) ||
           (character >= 0xFE30 && character <= 0xFE4F) ||
           (character >= 0xFF00 && character <= 0xFFEF) ||
           (character >= 0x20000 && character <= 0x3FFFF);
}

bool IsQuote(std::wstring_view text, std::size_t index, bool opening) {
    const wchar_t mark = text[index];
    if (!IsOneOf(kQuotes, mark))
        return false;
    const auto before = text.substr(0, index);
    return (std::count(before.begin(), before.end(), mark) % 2 == 0) == opening;
}

bool NeverFirst(std::wstring_view text, std::size_t index) {
    return IsOneOf(kNeverFirst, text[index]) || IsQuote(text, index, false);
}

bool NeverLast(std::wstring_view text, std::size_t index) {
    return IsOneOf(kNeverLast, text[index]) || IsQuote(text, index, true);
}

std::size_t WithoutBlanks(std::wstring_view text, std::size_t begin, std::size_t end) {
    while (end > begin && IsBlank(text[end - 1]))
        --end;
    return end;
}

// Where the line that starts at `begin` ends: the last place that fits, or the first one at all.
std::size_t EndOfLine(std::wstring_view text, std::span<const double> edges, std::size_t begin,
                      double width) {
    std::size_t chosen = begin;
    for (std::size_t index = begin + 1; index <= text.size(); ++index) {
        if (index < text.size() && !MayBreakBefore(text, index))
            continue;
        const std::size_t visible = WithoutBlanks(text, begin, index);
        const bool fits = edges[visible] - edges[begin] <= width;
        // Blanks at the beginning stay with what follows them.
        if (visible == begin && index < text.size())
            continue;
        if (fits || chosen == begin)
            chosen = index;
        if (!fits)
            break;
    }
    return chosen;
}

}  // namespace

bool MayBreakBefore(std::wstring_view text, std::size_t index) {
    if (index == 0 || index >= text.size())
        return false;
    const wchar_t before = text[index - 1];
    const wchar_t after = text[index];
    if (IsBlank(after) || NeverFirst(text, index))
        return false;
    return IsBlank(before) || (!NeverLast(text, index - 1) && (IsWide(before) || IsWide(after)));
}

std::vector<LineOfText> BreakLines(std::wstring_view text, std::span<const double> edges,
                                   double width) {
    std::vector<LineOfText> lines;
    std::size_t begin = 0;
    do {
        const std::size_t next = EndOfLine(text, edges, begin, width);
        const bool last = next >= text.size();
        lines.push_back({begin, last ? text.size() : WithoutBlanks(text, begin, next)});
        begin = next;
    } while (begin < text.size());
    return lines;
}

}  // namespace platform::gdi
