#include "control/protocol.h"

#include <cstdint>

namespace control {
namespace {

constexpr std::size_t kMalformed = 0;

// The length of the character at the front, or kMalformed: cut off, longer than need be, a
// surrogate or beyond the last code point.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    const std::uint8_t first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return kMalformed;
    for (std::size_t at = 1; at < length; ++at)
        if ((byte(at) & 0xC0) != 0x80)
            return kMalformed;
    const bool out_of_range =
        (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
        (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return out_of_range ? kMalformed : length;
}

bool IsControl(char character) {
    const auto byte = static_cast<std::uint8_t>(character);
    return (byte < 0x20 && character != '\t') || byte == 0x7F;
}

}  // namespace

bool IsPlainText(std::string_view line) {
    while (!line.empty()) {
        const std::size_t length = CharacterLength(line);
        if (length == kMalformed || IsControl(line.front()))
            return false;
        line.remove_prefix(length);
    }
    return true;
}

std::string PlainText(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const bool good = length != kMalformed && !IsControl(text.front());
        plain += good ? text.substr(0, length) : "?";
        text.remove_prefix(good ? length : 1);
    }
    return plain;
}

}  // namespace control
