#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace unit {

inline constexpr std::size_t kFrameHeaderBytes = 7;
inline constexpr std::size_t kFrameChecksumBytes = 2;

// Bytes of one chunk follow each other more closely than this.
inline constexpr std::chrono::milliseconds kMaxGapInFrame{50};

// A chunk of the line's byte stream.
struct Segment {
    enum class Kind {
        kFrame,    // whole, its checksum matches
        kDamaged,  // the checksum does not match, or (header only) the length is impossible
        kStray,    // bytes that no frame begins with
    };
    Kind kind;
    std::vector<std::uint8_t> bytes;
};

// Cuts a byte stream into frames and what lies between them, just as the program's parser sees it:
// after a damaged frame the search goes on behind its last byte, and a frame that has begun waits
// for its rest however long. Not locked.
class FrameSplitter {
  public:
    // The chunk that this byte finishes, if it does.
    std::optional<Segment> Take(std::uint8_t byte);

    // The bytes of a frame that has begun.
    const std::vector<std::uint8_t>& held() const { return held_; }
    // Gives up waiting for its rest.
    std::vector<std::uint8_t> GiveUp();

  private:
    Segment Finish(Segment::Kind kind);

    std::vector<std::uint8_t> held_;
};

// Of a frame's bytes in wire order.
std::uint16_t BigEndianAt(std::span<const std::uint8_t> bytes, std::size_t offset);
// What the checksum of those bytes, checksum not included, must be.
std::uint16_t ChecksumOf(std::span<const std::uint8_t> bytes);

}  // namespace unit
