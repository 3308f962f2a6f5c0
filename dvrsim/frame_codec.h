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
    kAcknowledgement = 0x20,  // from the DVR, to a request
    kIndication = 0x80,       // from the DVR, unrequested
};

struct Frame {
    std::uint8_t type = 0;
    std::uint16_t code = 0;
    std::vector<std::uint8_t> payload;

    bool operator==(const Frame&) const = default;
};

// Returns the frame's bytes in wire order. Throws std::length_error above kMaxPayloadBytes.
std::vector<std::uint8_t> EncodeFrame(FrameType type, std::uint16_t code,
                                      std::span<const std::uint8_t> payload);

// Finds frames in a byte stream that can start anywhere and be damaged anywhere. After a damaged
// frame it searches the bytes of that frame again, so a good frame that begins among them is found.
class FrameDecoder {
  public:
    void Take(std::uint8_t byte);

    // Removes and returns the oldest finished frame. Call it after each byte until it returns
    // nothing: the search after damage can finish several frames at once.
    std::optional<Frame> Next();

    // The number of sync pairs with an invalid length or a wrong checksum.
    std::size_t DamagedFrames() const { return damaged_frames_; }

  private:
    enum class Result { kNeedMore, kGood, kDamaged };

    void DropToNextSync(std::size_t at_least);
    Result Check() const;
    std::size_t FrameLength() const;

    std::vector<std::uint8_t> pending_;  // empty, or starts with a sync pair or its first byte
    std::deque<Frame> finished_;
    std::size_t damaged_frames_ = 0;
};

}  // namespace dvrsim
