#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "unit/line/fault_rule.h"

namespace unit {

// A byte on its way through the rules.
struct ByteSlot {
    std::uint8_t value;
    // Where it stood in the frame that it came with; empty for bytes of no frame.
    std::optional<std::size_t> place;
    std::chrono::microseconds delay{};  // at least so long after its arrival
    std::chrono::microseconds pause{};  // after the byte before it
};
using ByteSlots = std::vector<ByteSlot>;

// What bytes that come together become at most; the rest is lost. Rules that double, one after the
// other, would not end otherwise.
inline constexpr std::size_t kMaxSlots = std::size_t{16} * 1024;

ByteSlots SlotsOf(std::span<const std::uint8_t> bytes, bool frame);

// Whether the rule's part is there in a frame of `frame_size` bytes, of which some have been
// faulted already.
bool HasPart(const FaultRule& rule, const ByteSlots& slots, std::size_t frame_size);

// Does to the rule's part of a frame what the rule says.
void FaultFrame(const FaultRule& rule, ByteSlots& slots, std::size_t frame_size);
// The same for one byte: what comes in its place.
ByteSlots FaultByte(const FaultRule& rule, const ByteSlot& slot);

}  // namespace unit
