#include "unit/line/frame_splitter.h"

#include <numeric>
#include <utility>

#include "dvrsim/frame_codec.h"

namespace unit {
namespace {

constexpr std::uint8_t kSync1 = 0xA5;
constexpr std::uint8_t kSync2 = 0x5A;
constexpr std::size_t kLengthOffset = 5;

}  // namespace

std::uint16_t BigEndianAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(bytes[offset] * 256U + bytes[offset + 1]);
}

std::uint16_t ChecksumOf(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint16_t>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

std::optional<Segment> FrameSplitter::Take(std::uint8_t byte) {
    held_.push_back(byte);
    if (held_.size() == 1)
        return byte == kSync1 ? std::nullopt : std::optional(Finish(Segment::Kind::kStray));
    if (held_.size() == 2) {
        if (byte == kSync2)
            return std::nullopt;
        if (byte != kSync1)
            return Finish(Segment::Kind::kStray);
        held_.pop_back();
        Segment stray = Finish(Segment::Kind::kStray);
        held_ = {kSync1};
        return stray;
    }
    if (held_.size() < kFrameHeaderBytes)
        return std::nullopt;
    const std::size_t length = BigEndianAt(held_, kLengthOffset);
    if (length > dvrsim::kMaxPayloadBytes)
        return Finish(Segment::Kind::kDamaged);
    const std::size_t summed = kFrameHeaderBytes + length;
    if (held_.size() < summed + kFrameChecksumBytes)
        return std::nullopt;
    const bool matches = ChecksumOf(std::span(held_).first(summed)) == BigEndianAt(held_, summed);
    return Finish(matches ? Segment::Kind::kFrame : Segment::Kind::kDamaged);
}

std::vector<std::uint8_t> FrameSplitter::GiveUp() {
    return std::exchange(held_, {});
}

Segment FrameSplitter::Finish(Segment::Kind kind) {
    return {kind, GiveUp()};
}

}  // namespace unit
