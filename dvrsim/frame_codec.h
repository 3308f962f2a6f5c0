#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace dvrsim {

inline constexpr std::size_t kMaxPayloadBytes = 64;

enum class FrameType : std::uint8_t {
    kRequest = 0x10,          // from the unit
    kAcknowledgement = 0x20,  // the DVR answers a request
    kIndication = 0x80,       // the DVR reports by itself
};

struct Frame {
    std::uint8_t type = 0;
    std::uint16_t code = 0;
    std::vector<std::uint8_t> payload;

    bool operator==(const Frame&) const = default;
};

// The frame's bytes in wire order. Throws std::length_error above kMaxPayloadBytes.
std::vector<std::uint8_t> EncodeFrame(FrameType type, std::uint16_t code,
                                      std::span<const std::uint8_t> payload);

// Finds frames in a byte stream that may begin anywhere and be damaged anywhere. After damage it
// looks again at the bytes that it had taken for the bad frame, so a good frame that begins among
// them is not lost.
class FrameDecoder {
  public:
    void Take(std::uint8_t byte);

    // The oldest finished frame not yet fetched. Fetch until empty after each byte: bytes read
    // anew can finish several frames at once.
    std::optional<Frame> Next();

    // Sync pairs followed by an impossible length or by a checksum that did not match.
    std::size_t DamagedFrames() const { return damaged_frames_; }

  private:
    enum class Verdict { kNeedMore, kGood, kDamaged };

    void DropToNextSync(std::size_t at_least);
    Verdict Judge() const;
    std::size_t FrameLength() const;

    std::vector<std::uint8_t> pending_;  // empty, or begins with a sync pair or its first half
    std::deque<Frame> finished_;
    std::size_t damaged_frames_ = 0;
};

}  // namespace dvrsim
