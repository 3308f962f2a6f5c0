#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "unit/line/frame_splitter.h"

namespace unit {

// The line's content as text, for panel, `watch` and messages.

// "A5 5A 00".
std::string HexText(std::span<const std::uint8_t> bytes);
// "to unit" or "to DVR".
std::string DirectionName(Direction direction);
// "REQ", "ACK", "IND", or the byte of an unknown type.
std::string FrameTypeName(std::uint8_t type);
// "FW_Upgrade_Version", "FW_Upgrade_Version query", or the number of an unknown command.
std::string CodeName(std::uint16_t code);
// Reads a command's name in upper or lower case, or a number such as 0x2E. Otherwise empty, with
// one line in `problem`.
std::optional<std::uint16_t> ReadCommand(const std::string& word, std::string& problem);
// "IND FW_Upgrade_Version", from a frame's bytes in wire order.
std::string FrameName(std::span<const std::uint8_t> frame);

// A frame's payload: decoded where its meaning is known ("57 '14.09.01.V1.02.03'", "2 normal"),
// otherwise in hexadecimal.
std::string PayloadText(std::uint8_t type, std::uint16_t code,
                        std::span<const std::uint8_t> payload);

}  // namespace unit
