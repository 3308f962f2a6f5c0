#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dvrsim/frame_codec.h"
#include "unit/line/frame_splitter.h"

namespace unit {

enum class FramePart { kWhole, kSync, kType, kCode, kLength, kPayload, kChecksum };

// Which frames a rule applies to; an empty member matches all.
struct FrameFilter {
    std::optional<std::uint16_t> command;  // its number, without the query bit
    std::optional<dvrsim::FrameType> type;
    std::optional<bool> query;

    // `frame` is complete and its checksum matches.
    bool Matches(std::span<const std::uint8_t> frame) const;
    bool operator==(const FrameFilter&) const = default;
};

// One fault of the line: the action, its target and how often it applies.
struct FaultRule {
    enum class Action {
        kDrop,
        kCorrupt,    // by xor with `bytes`, or by `bytes` as new values; repeated as needed
        kDuplicate,  // twice in a row
        kDelay,      // by `duration` from its arrival; later bytes stay behind it
        kSplit,      // a pause of `duration` before the part, or in the middle of a whole frame
        kInject,     // `bytes` before or after it
    };

    Action action = Action::kDrop;
    bool to_unit = true;
    bool to_dvr = true;

    // Empty: every byte. Otherwise the part of these frames, or one byte of the part; a frame
    // without that part is no match.
    std::optional<FrameFilter> frames;
    FramePart part = FramePart::kWhole;
    std::optional<std::size_t> index;

    std::vector<std::uint8_t> bytes{0xFF};
    bool replaces = false;  // kCorrupt: new values
    bool after = false;     // kInject
    std::chrono::microseconds duration{};

    // Filters the matches in this order: after the first `skip`, every `every`-th, by chance, the
    // first `times`.
    std::uint64_t skip = 0;
    std::uint64_t every = 1;
    double chance_percent = 100;
    std::uint32_t seed = 1;
    std::optional<std::uint64_t> times;

    bool AppliesTo(Direction direction) const {
        return direction == Direction::kToUnit ? to_unit : to_dvr;
    }
    bool operator==(const FaultRule&) const = default;
};

}  // namespace unit
