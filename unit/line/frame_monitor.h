#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "unit/line/frame_splitter.h"

namespace unit {

// What passed on the line: a frame, damaged or not, or a run of stray bytes.
struct LineEntry {
    std::chrono::microseconds time;  // unit time of its last byte
    Direction direction;
    Segment::Kind kind;
    std::vector<std::uint8_t> bytes;

    // Only for frames, damaged or not.
    std::uint8_t type() const { return bytes[2]; }
    std::uint16_t code() const { return BigEndianAt(bytes, 3); }
    std::uint16_t command() const;  // its number, without the query bit
    bool query() const;
    // Empty when the length is impossible.
    std::span<const std::uint8_t> payload() const;
    bool checksum_good() const { return kind == Segment::Kind::kFrame; }

    // The update's percent, if this is an undamaged report of it.
    std::optional<int> percent() const;

    // "ok", or what is wrong with the frame or the bytes.
    std::string StatusText() const;

    // "to unit  IND  FW_Upgrade_Version  57 '14.09.01.V1.02.03'  ok", without the time.
    std::string Text() const;
};

// Turns the bytes of one direction into entries, split as FrameSplitter does; drops no byte. Not
// locked.
class FrameMonitor {
  public:
    explicit FrameMonitor(Direction direction) : direction_(direction) {}

    // Returns the entries that these bytes complete, in order.
    std::vector<LineEntry> Take(std::chrono::microseconds time,
                                std::span<const std::uint8_t> bytes);

    // Returns what no entry holds yet, at the end of the line: stray bytes and an incomplete frame.
    std::optional<LineEntry> Finish();

  private:
    // Returns the run of stray bytes that ended because no byte came for 50 ms.
    std::optional<LineEntry> Settle(std::chrono::microseconds now);
    std::optional<LineEntry> EndStray();

    const Direction direction_;
    FrameSplitter splitter_;
    std::vector<std::uint8_t> stray_;
    std::chrono::microseconds stray_time_{};
    std::chrono::microseconds last_time_{};
};

// A FrameMonitor for each direction.
class LineMonitor {
  public:
    std::vector<LineEntry> Take(std::chrono::microseconds time, Direction direction,
                                std::span<const std::uint8_t> bytes) {
        return (direction == Direction::kToUnit ? to_unit_ : to_dvr_).Take(time, bytes);
    }

    std::vector<LineEntry> Finish() {
        std::vector<LineEntry> entries;
        for (FrameMonitor* const monitor : {&to_unit_, &to_dvr_})
            if (auto entry = monitor->Finish())
                entries.push_back(*std::move(entry));
        return entries;
    }

  private:
    FrameMonitor to_unit_{Direction::kToUnit};
    FrameMonitor to_dvr_{Direction::kToDvr};
};

}  // namespace unit
