#pragma once

#include <pango/pango.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace platform::gdi {

// Whether a character may begin a line: between two letters only when a word has no line to itself.
enum class LineStart { kNever, kWithinWord, kAllowed };

// What Pango says of text[index], and strictly so: no mark that belongs to what is before it begins
// a line.
LineStart StartBefore(std::wstring_view text, std::size_t index, const PangoLogAttr& attributes);

// Characters begin to end of a text, without the blanks at which the line was broken.
struct LineOfText {
    std::size_t begin;
    std::size_t end;
};

// Breaks one paragraph into lines no wider than `width`, as full as can be; what cannot be broken
// sticks out. edges[i] is the left edge of character i, the last one the right edge of all.
std::vector<LineOfText> BreakLines(std::wstring_view text, std::span<const LineStart> starts,
                                   std::span<const double> edges, double width);

}  // namespace platform::gdi
