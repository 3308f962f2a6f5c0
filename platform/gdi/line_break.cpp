#include "platform/gdi/line_break.h"

#include <cwchar>

namespace platform::gdi {
namespace {

// Marks that JIS X 4051 keeps from the beginning of a line but the Unicode line breaking algorithm
// does not.
constexpr std::wstring_view kNeverFirst = L"～―";

bool IsSpace(wchar_t character) {
    return character == L' ' || character == L'\t' || character == L'\u3000';
}

bool IsLetter(wchar_t character) {
    const gunichar code{wint_t(character)};
    return g_unichar_isalnum(code) && !g_unichar_iswide(code);
}

std::size_t WithoutTrailingSpaces(std::wstring_view text, std::size_t begin, std::size_t end) {
    while (end > begin && IsSpace(text[end - 1]))
        --end;
    return end;
}

// The last place where the line that starts at `begin` can end; `begin` when none fits.
std::size_t EndThatFits(std::wstring_view text, std::span<const LineStart> starts,
                        std::span<const double> edges, std::size_t begin, double width,
                        LineStart weakest) {
    std::size_t chosen = begin;
    for (std::size_t index = begin + 1; index <= text.size(); ++index) {
        if (index < text.size() && starts[index] < weakest)
            continue;
        const std::size_t visible = WithoutTrailingSpaces(text, begin, index);
        // Leading spaces stay with the characters that follow them.
        if (visible == begin && index < text.size())
            continue;
        if (edges[visible] - edges[begin] > width)
            break;
        chosen = index;
    }
    return chosen;
}

std::size_t EndOfLine(std::wstring_view text, std::span<const LineStart> starts,
                      std::span<const double> edges, std::size_t begin, double width) {
    for (const LineStart weakest : {LineStart::kAllowed, LineStart::kWithinWord}) {
        const std::size_t end = EndThatFits(text, starts, edges, begin, width, weakest);
        if (end != begin)
            return end;
    }
    std::size_t end = begin + 1;
    while (end < text.size() &&
           (starts[end] == LineStart::kNever || WithoutTrailingSpaces(text, begin, end) == begin))
        ++end;
    return end;
}

}  // namespace

LineStart StartBefore(std::wstring_view text, std::size_t index, const PangoLogAttr& attributes) {
    if (index == 0 || kNeverFirst.find(text[index]) != std::wstring_view::npos)
        return LineStart::kNever;
    if (attributes.is_line_break)
        return LineStart::kAllowed;
    const bool within_word =
        attributes.is_char_break && IsLetter(text[index - 1]) && IsLetter(text[index]);
    return within_word ? LineStart::kWithinWord : LineStart::kNever;
}

std::vector<LineOfText> BreakLines(std::wstring_view text, std::span<const LineStart> starts,
                                   std::span<const double> edges, double width) {
    std::vector<LineOfText> lines;
    std::size_t begin = 0;
    do {
        const std::size_t next = EndOfLine(text, starts, edges, begin, width);
        const bool last = next >= text.size();
        lines.push_back({begin, last ? text.size() : WithoutTrailingSpaces(text, begin, next)});
        begin = next;
    } while (begin < text.size());
    return lines;
}

}  // namespace platform::gdi
