#include "unit/line/byte_slots.h"

#include <algorithm>
#include <utility>

#include "unit/line/frame_splitter.h"

namespace unit {
namespace {

struct Range {
    std::size_t first;
    std::size_t end;

    bool Holds(const ByteSlot& slot) const {
        return slot.offset && *slot.offset >= first && *slot.offset < end;
    }
};

Range PartOf(const FaultRule& rule, std::size_t frame_size) {
    const std::size_t checksum = frame_size - kFrameChecksumBytes;
    const Range parts[] = {{0, frame_size},
                           {0, 2},
                           {2, 3},
                           {3, 5},
                           {5, kFrameHeaderBytes},
                           {kFrameHeaderBytes, checksum},
                           {checksum, frame_size}};
    const Range part = parts[static_cast<std::size_t>(rule.part)];
    if (!rule.index)
        return part;
    const std::size_t first = std::min(part.first + *rule.index, part.end);
    return {first, std::min(first + 1, part.end)};
}

// What comes in the place of the slots, of which there is at least one.
ByteSlots Fault(const FaultRule& rule, ByteSlots slots) {
    switch (rule.action) {
        case FaultRule::Action::kDrop:
            return {};
        case FaultRule::Action::kCorrupt:
            for (std::size_t at = 0; at < slots.size(); ++at) {
                const std::uint8_t byte = rule.bytes[at % rule.bytes.size()];
                slots[at].value =
                    rule.replaces ? byte : static_cast<std::uint8_t>(slots[at].value ^ byte);
            }
            return slots;
        case FaultRule::Action::kDuplicate: {
            ByteSlots twice = slots;
            // It waits once only.
            slots.front().pause = {};
            twice.insert(twice.end(), slots.begin(), slots.end());
            return twice;
        }
        case FaultRule::Action::kDelay:
            slots.front().delay = std::max(slots.front().delay, rule.duration);
            return slots;
        case FaultRule::Action::kSplit: {
            const bool in_the_middle = rule.frames && rule.part == FramePart::kWhole && !rule.index;
            slots[in_the_middle ? slots.size() / 2 : 0].pause += rule.duration;
            return slots;
        }
        case FaultRule::Action::kInject: {
            const ByteSlots injected = SlotsOf(rule.bytes, false);
            slots.insert(rule.after ? slots.end() : slots.begin(), injected.begin(),
                         injected.end());
            return slots;
        }
    }
    return slots;
}

}  // namespace

bool FrameFilter::Matches(std::span<const std::uint8_t> frame) const {
    constexpr std::uint16_t kQueryBit = 0x8000;
    const std::uint16_t code = BigEndianAt(frame, 3);
    return (!command || *command == (code & ~kQueryBit)) &&
           (!type || static_cast<std::uint8_t>(*type) == frame[2]) &&
           (!query || *query == ((code & kQueryBit) != 0));
}

ByteSlots SlotsOf(std::span<const std::uint8_t> bytes, bool frame) {
    ByteSlots slots;
    slots.reserve(bytes.size());
    for (const std::uint8_t byte : bytes)
        slots.push_back({byte, frame ? std::optional(slots.size()) : std::nullopt});
    return slots;
}

bool HasPart(const FaultRule& rule, const ByteSlots& slots, std::size_t frame_size) {
    const Range part = PartOf(rule, frame_size);
    return std::ranges::any_of(slots, [&](const ByteSlot& slot) { return part.Holds(slot); });
}

void FaultFrame(const FaultRule& rule, ByteSlots& slots, std::size_t frame_size) {
    const Range part = PartOf(rule, frame_size);
    ByteSlots result;
    ByteSlots run;
    const auto finish_run = [&] {
        if (run.empty())
            return;
        const ByteSlots faulted = Fault(rule, std::exchange(run, {}));
        result.insert(result.end(), faulted.begin(), faulted.end());
    };
    for (const ByteSlot& slot : slots) {
        if (part.Holds(slot)) {
            run.push_back(slot);
            continue;
        }
        finish_run();
        result.push_back(slot);
    }
    finish_run();
    result.resize(std::min(result.size(), kMaxSlots), ByteSlot{});
    slots = std::move(result);
}

ByteSlots FaultByte(const FaultRule& rule, const ByteSlot& slot) {
    return Fault(rule, {slot});
}

}  // namespace unit
