#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace platform::gdi {

// Whether a line may end before text[index]: between Japanese characters, except that some marks
// never begin a line and some never end one, and after blanks.
bool MayBreakBefore(std::wstring_view text, std::size_t index);

// Characters begin to end of a text, without the blanks at which the line was broken.
struct LineOfText {
    std::size_t begin;
    std::size_t end;
    bool operator==(const LineOfText&) const = default;
};

// Breaks one paragraph into lines no wider than `width`; a word that is wider by itself sticks out.
// edges[i] is the left edge of character i, the last one the right edge of all.
std::vector<LineOfText> BreakLines(std::wstring_view text, std::span<const double> edges,
                                   double width);

}  // namespace platform::gdi
