#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "unit/events/event.h"

namespace unit {

// Bytes that came together, so long after the burst's first ones.
struct LinePiece {
    std::chrono::microseconds after;
    std::vector<std::uint8_t> bytes;
};

// Bytes of one direction that followed one another closely. In a recording the pieces are divided
// by the microseconds between them,
//     A5 5A 80 +1400 00 11
// or stand behind the word "wire" when each byte came alone, at the pace of the 460800 baud line:
// the Nth at the first microsecond in which its last bit has passed.
//     wire A5 5A 80 00 11
struct LineBurst {
    Direction direction;
    std::vector<LinePiece> pieces;

    std::size_t size() const;
};

std::string BurstText(const LineBurst& burst);

// The pieces of such a text; empty with one line in `problem` when it is none.
std::optional<std::vector<LinePiece>> ReadPieces(std::span<const std::string> words,
                                                 std::string& problem);

// Joins bytes to bursts; what the program sends at once stays a burst of its own. Not locked.
class BurstJoiner {
  public:
    struct Burst {
        std::chrono::microseconds time;
        LineBurst burst;
    };

    // Takes bytes in order of time; returns the burst that ended before them, if one did.
    std::optional<Burst> Take(std::chrono::microseconds time, const LineBytes& bytes);
    // Ends the burst that is being joined.
    std::optional<Burst> End();

  private:
    std::optional<Burst> open_;
};

}  // namespace unit
