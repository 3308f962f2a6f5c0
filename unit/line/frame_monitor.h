#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "unit/events/event.h"
#include "unit/line/frame_cutter.h"

namespace unit {

// Something that passed on the line: a frame, whole or damaged, or a run of bytes of no frame.
struct LineEntry {
    std::uint64_t number = 0;        // counts from 1 up
    std::chrono::microseconds time;  // of the unit, when its last byte came
    Direction direction;
    Cut::Kind kind;
    std::vector<std::uint8_t> bytes;  // as they passed

    // Of a frame, whole or damaged.
    std::uint8_t type() const { return bytes[2]; }
    std::uint16_t code() const { return BigEndianAt(bytes, 3); }
    std::uint16_t command() const;  // its number, without the query bit
    bool query() const;
    // Empty when the length is impossible.
    std::span<const std::uint8_t> payload() const;
    bool checksum_good() const { return kind == Cut::Kind::kFrame; }

    // "to unit  IND  FW_Upgrade_Version  57 '14.09.01.V1.02.03'  ok", without the time.
    std::string Text() const;
};

// Turns the bytes of one direction into entries. It sees them as the program's parser does (see
// FrameCutter), and hides nothing. Not locked.
class FrameMonitor {
  public:
    explicit FrameMonitor(Direction direction) : direction_(direction) {}

    // The entries that these bytes end, in order.
    std::vector<LineEntry> Take(std::chrono::microseconds time,
                                std::span<const std::uint8_t> bytes);
    // The run of stray bytes that has ended because nothing came for 50 ms.
    std::optional<LineEntry> Settle(std::chrono::microseconds now);

    // The bytes of a frame that waits for its rest.
    const std::vector<std::uint8_t>& unfinished() const { return cutter_.held(); }

  private:
    std::optional<LineEntry> EndStray();

    const Direction direction_;
    FrameCutter cutter_;
    std::vector<std::uint8_t> stray_;
    std::chrono::microseconds stray_time_{};
};

// The live list of both directions' entries, the latest 10,000 of them. Any thread.
class LineHistory {
  public:
    void Take(std::chrono::microseconds time, const LineBytes& bytes);

    // Those with numbers above `number` that are still there; `now` ends runs of stray bytes.
    std::vector<LineEntry> Since(std::uint64_t number, std::chrono::microseconds now);
    void Clear();

  private:
    void Keep(LineEntry entry);

    static constexpr std::size_t kMost = 10'000;

    std::mutex mutex_;
    FrameMonitor monitors_[2] = {FrameMonitor(Direction::kToUnit), FrameMonitor(Direction::kToDvr)};
    std::deque<LineEntry> entries_;
    std::uint64_t last_number_ = 0;
};

}  // namespace unit
