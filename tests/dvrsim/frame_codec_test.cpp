#include "dvrsim/frame_codec.h"

#include <gtest/gtest.h>

namespace dvrsim {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kState2{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x01, 0xB2};
const Bytes kReboot{0xA5, 0x5A, 0x10, 0x00, 0x1C, 0x00, 0x01, 0x00, 0x01, 0x2C};
const Bytes kEmpty{0xA5, 0x5A, 0x80, 0x00, 0x10, 0x00, 0x00, 0x01, 0x8F};
const Bytes kSyncInside{0xA5, 0x5A, 0x10, 0x00, 0x20, 0x00, 0x02, 0xA5, 0x5A, 0x02, 0x30};

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::vector<std::uint16_t> Codes(FrameDecoder& decoder, const Bytes& bytes) {
    std::vector<std::uint16_t> codes;
    for (const std::uint8_t byte : bytes) {
        decoder.Take(byte);
        while (const auto frame = decoder.Next()) {
            codes.push_back(frame->code);
        }
    }
    return codes;
}

// The largest frame; its sum exceeds 16 bits.
const Bytes kFull =
    Joined({{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x40}, Bytes(64, 0xFF), {0x41, 0x1F}});

TEST(FrameCodec, EncodesAndDecodesKnownFrames) {
    const struct {
        FrameType type;
        std::uint16_t code;
        Bytes payload, wire;
    } cases[] = {
        {FrameType::kAcknowledgement, 0x8010, {0x02}, kState2},
        {FrameType::kRequest, 0x001C, {0x00}, kReboot},
        {FrameType::kIndication, 0x0010, {}, kEmpty},
        {FrameType::kRequest, 0x0010, Bytes(64, 0xFF), kFull},
        {FrameType::kRequest, 0x0020, {0xA5, 0x5A}, kSyncInside},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_EQ(EncodeFrame(c.type, c.code, c.payload), c.wire);
        FrameDecoder decoder;
        for (const std::uint8_t byte : c.wire) {
            EXPECT_FALSE(decoder.Next());
            decoder.Take(byte);
        }
        EXPECT_EQ(decoder.Next(), (Frame{static_cast<std::uint8_t>(c.type), c.code, c.payload}));
        EXPECT_FALSE(decoder.Next());
    }
    EXPECT_THROW(EncodeFrame(FrameType::kIndication, 0x0010, Bytes(65)), std::length_error);
}

TEST(FrameDecoder, FindsFramesAmongDamage) {
    const Bytes bad_sum{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x01, 0xB3};
    const Bytes bad_high_sum{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x00, 0xB2};
    const Bytes too_long{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x41};
    const Bytes far_too_long{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x01, 0x00};
    // The next frame's first byte makes its length 165.
    const Bytes cut(kState2.begin(), kState2.begin() + 6);
    // Claims 20 payload bytes and so swallows the two frames that follow.
    const Bytes greedy{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x14};

    const struct {
        const char* name;
        Bytes stream;
        std::vector<std::uint16_t> codes;
        std::size_t damaged;
    } cases[] = {
        {"noise before and between",
         Joined({{0, 0x5A, 1}, kState2, {0xFF, 0xA5}, kReboot}),
         {0x8010, 0x001C},
         0},
        {"sum wrong", Joined({bad_sum, kReboot}), {0x001C}, 1},
        {"sum's high byte wrong", Joined({bad_high_sum, kReboot}), {0x001C}, 1},
        {"length 65", Joined({too_long, kReboot}), {0x001C}, 1},
        {"length 256", Joined({far_too_long, kReboot}), {0x001C}, 1},
        {"cut short", Joined({cut, kReboot}), {0x001C}, 1},
        {"one frame swallowed so far", Joined({greedy, kReboot}), {}, 0},
        {"two frames swallowed", Joined({greedy, kState2, kEmpty, {0, 0, 0}}), {0x8010, 0x0010}, 1},
        {"false sync before the true one",
         Joined({{0xA5, 0x5A}, kFull, kFull}),
         {0x0010, 0x0010},
         1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FrameDecoder decoder;
        EXPECT_EQ(Codes(decoder, c.stream), c.codes);
        EXPECT_EQ(decoder.DamagedFrames(), c.damaged);
    }
}

}  // namespace
}  // namespace dvrsim
