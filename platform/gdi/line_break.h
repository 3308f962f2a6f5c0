#pragma once

#include <pango/pango.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace platform::gdi {

// Whether a character may begin a line; kWithinWord: only when a word is wider than a line.
enum class LineStart { kNever, kWithinWord, kAllowed };

// Pango's line break attributes of text[index], made stricter: no mark that belongs to the
// character before it begins a line.
LineStart StartBefore(std::wstring_view text, std::size_t index, const PangoLogAttr& attributes);

// Characters begin to end of a text, without the spaces at which the line was broken.
struct LineOfText {
    std::size_t begin;
    std::size_t end;
};

// Breaks one paragraph into the longest lines no wider than `width`; a part that cannot be broken
// may be wider. edges[i] is the left edge of character i, the last one the right edge of all.
std::vector<LineOfText> BreakLines(std::wstring_view text, std::span<const LineStart> starts,
                                   std::span<const double> edges, double width);

}  // namespace platform::gdi
