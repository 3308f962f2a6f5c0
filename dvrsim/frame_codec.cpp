#include "dvrsim/frame_codec.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace dvrsim {
namespace {

constexpr std::uint8_t kSync1 = 0xA5;
constexpr std::uint8_t kSync2 = 0x5A;
constexpr std::size_t kHeaderBytes = 7;
constexpr std::size_t kChecksumBytes = 2;

std::uint16_t Sum(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint16_t>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

void AppendBigEndian(std::vector<std::uint8_t>& bytes, std::size_t value) {
    bytes.push_back(static_cast<std::uint8_t>((value >> 8U) & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFFU));
}

std::uint16_t BigEndianAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(bytes[offset] * 256U + bytes[offset + 1]);
}

}  // namespace

std::vector<std::uint8_t> EncodeFrame(FrameType type, std::uint16_t code,
                                      std::span<const std::uint8_t> payload) {
    if (payload.size() > kMaxPayloadBytes)
        throw std::length_error("the payload is too long for a frame");
    std::vector<std::uint8_t> bytes;
    bytes.reserve(kHeaderBytes + payload.size() + kChecksumBytes);
    bytes.push_back(kSync1);
    bytes.push_back(kSync2);
    bytes.push_back(static_cast<std::uint8_t>(type));
    AppendBigEndian(bytes, code);
    AppendBigEndian(bytes, payload.size());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    AppendBigEndian(bytes, Sum(bytes));
    return bytes;
}

void FrameDecoder::Take(std::uint8_t byte) {
    pending_.push_back(byte);
    DropToNextSync(0);
    for (;;) {
        switch (Check()) {
            case Result::kNeedMore:
                return;
            case Result::kGood:
                finished_.push_back({pending_[2],
                                     BigEndianAt(pending_, 3),
                                     {pending_.begin() + kHeaderBytes,
                                      pending_.begin() + FrameLength() - kChecksumBytes}});
                DropToNextSync(FrameLength());
                break;
            case Result::kDamaged:
                ++damaged_frames_;
                DropToNextSync(1);
                break;
        }
    }
}

std::optional<Frame> FrameDecoder::Next() {
    if (finished_.empty())
        return std::nullopt;
    Frame frame = std::move(finished_.front());
    finished_.pop_front();
    return frame;
}

void FrameDecoder::DropToNextSync(std::size_t at_least) {
    auto start = pending_.begin() + at_least;
    while (start != pending_.end()) {
        start = std::find(start, pending_.end(), kSync1);
        if (start == pending_.end() || start + 1 == pending_.end() || *(start + 1) == kSync2)
            break;
        ++start;
    }
    pending_.erase(pending_.begin(), start);
}

FrameDecoder::Result FrameDecoder::Check() const {
    if (pending_.size() < kHeaderBytes)
        return Result::kNeedMore;
    if (BigEndianAt(pending_, 5) > kMaxPayloadBytes)
        return Result::kDamaged;
    const std::size_t length = FrameLength();
    if (pending_.size() < length)
        return Result::kNeedMore;
    const std::size_t summed = length - kChecksumBytes;
    const bool matches = Sum(std::span(pending_).first(summed)) == BigEndianAt(pending_, summed);
    return matches ? Result::kGood : Result::kDamaged;
}

std::size_t FrameDecoder::FrameLength() const {
    return kHeaderBytes + BigEndianAt(pending_, 5) + kChecksumBytes;
}

}  // namespace dvrsim
