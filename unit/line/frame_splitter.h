#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace unit {

enum class Direction { kToUnit, kToDvr };

inline constexpr std::size_t kFrameHeaderBytes = 7;
inline constexpr std::size_t kFrameChecksumBytes = 2;

// A gap of this length ends a run of stray bytes and gives up a frame that a fault rule holds.
inline constexpr std::chrono::milliseconds kMaxGapInFrame{50};

// A part of the line's byte stream.
struct Segment {
    enum class Kind {
        kFrame,    // complete, and its checksum matches
        kDamaged,  // the checksum does not match, or (header only) the length is impossible
        kStray,    // bytes outside frames
    };
    Kind kind;
    std::vector<std::uint8_t> bytes;
};

// Splits a byte stream into frames and the bytes between them, exactly as the program's parser
// does: after a damaged frame the search continues behind its last byte, and an incomplete frame
// waits for the rest without a time limit. Not locked.
class FrameSplitter {
  public:
    // Returns the segment that this byte completes, if any.
    std::optional<Segment> Take(std::uint8_t byte);

    // The bytes of an incomplete frame.
    const std::vector<std::uint8_t>& held() const { return held_; }
    // Returns and drops them.
    std::vector<std::uint8_t> GiveUp();

  private:
    Segment Finish(Segment::Kind kind);

    std::vector<std::uint8_t> held_;
};

// Reads from a frame's bytes in wire order.
std::uint16_t BigEndianAt(std::span<const std::uint8_t> bytes, std::size_t offset);
// The checksum for a frame's bytes without the checksum.
std::uint16_t ChecksumOf(std::span<const std::uint8_t> bytes);

}  // namespace unit
