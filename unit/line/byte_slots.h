#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "unit/line/fault_rule.h"

namespace unit {

// A byte while the fault rules are applied to it.
struct ByteSlot {
    std::uint8_t value;
    // Its offset in the frame that it arrived in; empty outside frames and for injected bytes.
    std::optional<std::size_t> offset;
    std::chrono::microseconds delay{};  // minimum, from its arrival
    std::chrono::microseconds pause{};  // after the byte before it
};
using ByteSlots = std::vector<ByteSlot>;

// Maximum output for each input chunk; the rest is lost. Guards against rules that double each
// other's output.
inline constexpr std::size_t kMaxSlots = std::size_t{16} * 1024;

ByteSlots SlotsOf(std::span<const std::uint8_t> bytes, bool frame);

// True when a frame of `frame_size` bytes, after the rules applied so far, still has bytes of the
// rule's part.
bool HasPart(const FaultRule& rule, const ByteSlots& slots, std::size_t frame_size);

// Applies the rule to its part of a frame.
void FaultFrame(const FaultRule& rule, ByteSlots& slots, std::size_t frame_size);
// Applies the rule to one byte and returns its replacement.
ByteSlots FaultByte(const FaultRule& rule, const ByteSlot& slot);

}  // namespace unit
