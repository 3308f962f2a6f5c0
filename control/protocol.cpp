#include "control/protocol.h"

#include <cstdint>

#include "control/utf8.h"

namespace control {
namespace {

bool IsControl(char character) {
    const auto byte = static_cast<std::uint8_t>(character);
    return (byte < 0x20 && character != '\t') || byte == 0x7F;
}

}  // namespace

bool IsPlainText(std::string_view line) {
    while (!line.empty()) {
        const std::size_t length = Utf8Length(line);
        if (length == 0 || IsControl(line.front()))
            return false;
        line.remove_prefix(length);
    }
    return true;
}

std::string PlainText(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const std::size_t length = Utf8Length(text);
        const bool good = length != 0 && !IsControl(text.front());
        plain += good ? text.substr(0, length) : "?";
        text.remove_prefix(good ? length : 1);
    }
    return plain;
}

}  // namespace control
