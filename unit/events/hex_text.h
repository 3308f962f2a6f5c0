#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace unit {

// "A5 5A 00".
std::string HexText(std::span<const std::uint8_t> bytes);

}  // namespace unit
