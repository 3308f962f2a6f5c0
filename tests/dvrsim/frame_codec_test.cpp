#include "dvrsim/frame_codec.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace dvrsim {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

const Bytes kState2{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x01, 0xB2};
const Bytes kReboot{0xA5, 0x5A, 0x10, 0x00, 0x1C, 0x00, 0x01, 0x00, 0x01, 0x2C};
const Bytes kEmpty{0xA5, 0x5A, 0x80, 0x00, 0x10, 0x00, 0x00, 0x01, 0x8F};
// The largest frame; its sum exceeds 16 bits.
const Bytes kFull =
    Joined({{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x40}, Bytes(64, 0xFF), {0x41, 0x1F}});

TEST(FrameCodec, EncodesKnownFrames) {
    const Bytes state{2};
    EXPECT_EQ(EncodeFrame(FrameType::kAcknowledgement, 0x8010, state), kState2);
    EXPECT_EQ(EncodeFrame(FrameType::kIndication, 0x0010, {}), kEmpty);
    EXPECT_EQ(EncodeFrame(FrameType::kRequest, 0x0010, Bytes(64, 0xFF)), kFull);
    EXPECT_THROW(EncodeFrame(FrameType::kIndication, 0x0010, Bytes(65)), std::length_error);
}

TEST(FrameDecoder, FindsFramesAmongDamage) {
    const Frame state{0x20, 0x8010, {0x02}};
    const Frame reboot{0x10, 0x001C, {0x00}};
    const Frame empty{0x80, 0x0010, {}};
    const Frame full{0x10, 0x0010, Bytes(64, 0xFF)};
    // Claims 20 payload bytes and so swallows the two frames that follow.
    const Bytes greedy{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x14};
    const struct {
        const char* name;
        Bytes stream;
        std::vector<Frame> frames;
        std::size_t damaged;
    } cases[] = {
        {"noise before and between",
         Joined({{0, 0x5A, 1}, kState2, {0xFF, 0xA5}, kReboot}),
         {state, reboot},
         0},
        {"sync inside",
         {0xA5, 0x5A, 0x10, 0x00, 0x20, 0x00, 0x02, 0xA5, 0x5A, 0x02, 0x30},
         {{0x10, 0x0020, {0xA5, 0x5A}}},
         0},
        {"sum wrong",
         Joined({{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x01, 0xB3}, kReboot}),
         {reboot},
         1},
        {"sum's high byte wrong",
         Joined({{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x00, 0xB2}, kReboot}),
         {reboot},
         1},
        {"length 65", Joined({{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x41}, kReboot}), {reboot}, 1},
        {"length 256", Joined({{0xA5, 0x5A, 0x10, 0x00, 0x10, 0x01, 0x00}, kReboot}), {reboot}, 1},
        {"one frame swallowed so far", Joined({greedy, kReboot}), {}, 0},
        {"two frames swallowed", Joined({greedy, kState2, kEmpty, {0, 0, 0}}), {state, empty}, 1},
        {"false sync before the true one", Joined({{0xA5, 0x5A}, kFull, kFull}), {full, full}, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FrameDecoder decoder;
        std::vector<Frame> frames;
        for (const std::uint8_t byte : c.stream) {
            decoder.Take(byte);
            while (const auto frame = decoder.Next()) {
                frames.push_back(*frame);
            }
        }
        EXPECT_EQ(frames, c.frames);
        EXPECT_EQ(decoder.DamagedFrames(), c.damaged);
    }
}

}  // namespace
}  // namespace dvrsim
