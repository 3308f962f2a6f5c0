#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace control {

// The length in bytes of the first UTF-8 character of `text`, which must not be empty. 0 if it is
// malformed: truncated, overlong, a surrogate or beyond the last code point.
constexpr std::size_t Utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    const std::uint8_t first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t at = 1; at < length; ++at)
        if ((byte(at) & 0xC0) != 0x80)
            return 0;
    const bool out_of_range =
        (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
        (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return out_of_range ? 0 : length;
}

}  // namespace control
