#include "platform/gdi/line_break.h"

namespace platform::gdi {
namespace {

// The marks that JIS X 4051 keeps from the beginning of a line, with their ASCII fellows.
constexpr std::wstring_view kNeverFirst =
    L"、。，．・：；？！゛゜ヽヾゝゞ々ー―…‥〜～）〕］｝〉》」』】’”°′″℃％"
    L"ぁぃぅぇぉっゃゅょゎァィゥェォッャュョヮヵヶ｡｣､･ｧｨｩｪｫｬｭｮｯｰﾞﾟ"
    L"!),.:;?]}%";
// And from its end.
constexpr std::wstring_view kNeverLast = L"（〔［｛〈《「『【‘“￥＄｢([{$";
// The same mark opens and closes.
constexpr std::wstring_view kNeitherFirstNorLast = L"\"'";

bool IsOneOf(std::wstring_view set, wchar_t character) {
    return set.find(character) != std::wstring_view::npos;
}

bool IsBlank(wchar_t character) {
    return character == L' ' || character == L'\t' || character == L'\u3000';
}

// Ideographs, kana and full-width forms, between which a line may break without a blank.
bool IsWide(wchar_t character) {
    const auto code = static_cast<unsigned>(character);
    return (code >= 0x2E80 && code <= 0x9FFF) || (code >= 0xAC00 && code <= 0xD7A3) ||
           (code >= 0xF900 && code <= 0xFAFF) || (code >= 0xFE30 && code <= 0xFE4F) ||
           (code >= 0xFF00 && code <= 0xFFEF) || (code >= 0x20000 && code <= 0x3FFFF);
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
    if (IsBlank(after))
        return false;
    if (IsBlank(before))
        return !IsOneOf(kNeverFirst, after);
    if (IsOneOf(kNeitherFirstNorLast, before) || IsOneOf(kNeitherFirstNorLast, after) ||
        IsOneOf(kNeverFirst, after) || IsOneOf(kNeverLast, before))
        return false;
    return IsWide(before) || IsWide(after);
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
