#pragma once

#include <span>
#include <string_view>

namespace unit {

// A text that the program draws, and what it says in English.
struct Gloss {
    std::wstring_view text;
    std::string_view english;
};
std::span<const Gloss> Glosses();

// The English of a text on the screen; empty for one without a gloss, such as an English text.
std::string_view GlossOf(std::wstring_view text);

}  // namespace unit
