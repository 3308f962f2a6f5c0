#include "unit/events/hex_text.h"

#include <cstdio>

namespace unit {

std::string HexText(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%s%02X", text.empty() ? "" : " ", byte);
        text += digits;
    }
    return text;
}

}  // namespace unit
