#include "dvrsim/frame_codec.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "control/words.h"

namespace dvrsim {
namespace {

std::vector<std::uint8_t> Hex(std::string hex) {
    std::erase(hex, ' ');
    return control::ReadBytes(hex).value();
}

std::string Repeated(std::string_view text, int count) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

const std::string kState2 = "A55A 20 8010 0001 02 01B2";
const std::string kReboot = "A55A 10 001C 0001 00 012C";
const std::string kEmpty = "A55A 80 0010 0000 018F";
// The largest frame; its sum exceeds 16 bits.
const std::string kFull = "A55A 10 0010 0040" + Repeated("FF", 64) + "411F";

TEST(FrameCodec, EncodesKnownFrames) {
    EXPECT_EQ(EncodeFrame(FrameType::kAcknowledgement, 0x8010, Hex("02")), Hex(kState2));
    EXPECT_EQ(EncodeFrame(FrameType::kIndication, 0x0010, {}), Hex(kEmpty));
    EXPECT_EQ(EncodeFrame(FrameType::kRequest, 0x0010, Hex(Repeated("FF", 64))), Hex(kFull));
    EXPECT_THROW(EncodeFrame(FrameType::kIndication, 0x0010, Hex(Repeated("FF", 65))),
                 std::length_error);
}

TEST(FrameDecoder, FindsFramesAmongDamage) {
    const Frame state{0x20, 0x8010, {0x02}};
    const Frame reboot{0x10, 0x001C, {0x00}};
    const Frame empty{0x80, 0x0010, {}};
    const Frame full{0x10, 0x0010, Hex(Repeated("FF", 64))};
    // Claims 20 payload bytes and so swallows the two frames that follow.
    const std::string greedy = "A55A 10 0010 0014";
    const struct {
        const char* name;
        std::string stream;
        std::vector<Frame> frames;
        std::size_t damaged = 0;
    } cases[] = {
        {"noise around", "005A01" + kState2 + "FFA5" + kReboot, {state, reboot}},
        {"sync inside", "A55A 10 0020 0002 A55A 0230", {{0x10, 0x0020, {0xA5, 0x5A}}}},
        {"sum wrong", "A55A 20 8010 0001 02 01B3" + kReboot, {reboot}, 1},
        {"sum's high byte wrong", "A55A 20 8010 0001 02 00B2" + kReboot, {reboot}, 1},
        {"length 65", "A55A 10 0010 0041" + kReboot, {reboot}, 1},
        {"length 256", "A55A 10 0010 0100" + kReboot, {reboot}, 1},
        {"one frame swallowed so far", greedy + kReboot, {}},
        {"two frames swallowed", greedy + kState2 + kEmpty + "000000", {state, empty}, 1},
        {"false sync before the true one", "A55A" + kFull + kFull, {full, full}, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FrameDecoder decoder;
        std::vector<Frame> frames;
        for (const std::uint8_t byte : Hex(c.stream)) {
            decoder.Take(byte);
            while (const auto frame = decoder.Next())
                frames.push_back(*frame);
        }
        EXPECT_EQ(frames, c.frames);
        EXPECT_EQ(decoder.DamagedFrames(), c.damaged);
    }
}

}  // namespace
}  // namespace dvrsim
