#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "tests/support/memory_port.h"
#include "unit/line/line_tap.h"

namespace tests {

// "COM9:" on a memory line with a tap in it.
struct TappedPort {
    explicit TappedPort(Platform& on) : platform(on) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(tap);
    }

    // A piece as the tap tells it, or as the device hears it.
    struct Piece {
        int microseconds;  // since the start
        std::string bytes;
        bool operator==(const Piece&) const = default;
    };

    void Start() { start = platform::kernel::Now(); }
    void Note(std::vector<Piece>& pieces, std::span<const std::uint8_t> bytes) const {
        pieces.push_back({static_cast<int>((platform::kernel::Now() - start).count()),
                          std::string(bytes.begin(), bytes.end())});
    }

    Platform& platform;
    platform::kernel::Time start{};
    std::vector<Piece> to_unit;
    std::vector<Piece> to_dvr;
    MemoryPort port{platform};
    std::shared_ptr<unit::LineTap> tap = std::make_shared<unit::LineTap>(
        port.line, [this](unit::Direction direction, std::span<const std::uint8_t> bytes) {
            Note(direction == unit::Direction::kToUnit ? to_unit : to_dvr, bytes);
        });
};

inline void PrintTo(const TappedPort::Piece& piece, std::ostream* out) {
    *out << piece.microseconds << " us " << testing::PrintToString(piece.bytes);
}

}  // namespace tests
