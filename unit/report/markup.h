#pragma once

#include <string>
#include <string_view>

namespace unit {

// Parts of HTML and XML documents. What is written is both: every element is closed.

// The text as content or as the value of an attribute; bytes that are no plain text become "?", and
// a line end "&#10;".
std::string Escaped(std::string_view text);

// The element, such as "td class=\"time\"", around this content, which is markup already.
std::string Element(std::string_view opening, std::string_view content);

// The text as the path of a relative link.
std::string LinkPath(std::string_view path);

}  // namespace unit
