#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "unit/events/event.h"

namespace unit {

// How the line's content reads everywhere: in the panel, in `watch`, in messages.

// "to unit" or "to DVR".
std::string DirectionName(Direction direction);
// "REQ", "ACK", "IND", or the byte for a type that is none.
std::string FrameTypeName(std::uint8_t type);
// "FW_Upgrade_Version", "FW_Upgrade_Version query", or the number for a command that is none.
std::string CodeName(std::uint16_t code);
// The reverse: of a name in any letters, or of a number such as 0x2E. Empty for another word,
// with one line in `problem`.
std::optional<std::uint16_t> ReadCommand(const std::string& word, std::string& problem);
// "IND FW_Upgrade_Version", of a frame's bytes in wire order.
std::string FrameName(std::span<const std::uint8_t> frame);

// The payload of such a frame: decoded where its meaning is known ("57 '14.09.01.V1.02.03'",
// "2 normal"), in hexadecimal otherwise.
std::string PayloadText(std::uint8_t type, std::uint16_t code,
                        std::span<const std::uint8_t> payload);

}  // namespace unit
