#pragma once

#include <array>
#include <cstdio>
#include <string>

namespace tests::model {

// As printf has it, up to 200 characters.
template <typename... Values>
std::string Text(const char* format, Values... values) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

}  // namespace tests::model
