#pragma once

#include <string_view>

namespace unit {

// Whether the text has all the words of the filter in it, in either case of its Latin letters; a
// word that begins with - must not be in it.
bool Passes(std::string_view text, std::string_view filter);

}  // namespace unit
