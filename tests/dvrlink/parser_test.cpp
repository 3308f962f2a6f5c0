#include <gtest/gtest.h>

#include <random>

#include "dvrlink/LinkState.h"
#include "dvrlink/UART.h"
#include "link_fixture.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using Log = std::vector<std::string>;

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// Frames written out byte by byte. A plain handler's line tells that the frame was dispatched.
const Bytes kVolume = {0xA5, 0x5A, 0x80, 0x00, 0x19, 0x00, 0x01, 0x07, 0x01, 0xA0};
const char kVolumeLine[] = "\tPlay_Volume_IND, (0x0019)";
const Bytes kLanguage = {0xA5, 0x5A, 0x20, 0x80, 0x1A, 0x00, 0x00, 0x01, 0xB9};
const char kLanguageLine[] = "\tLanguage_ACK, (0x801A), Query";
// Their last line shows the payload as text: it shows what an earlier frame left behind.
const Bytes kLongProgress = {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00, 0x04,
                             0x05, 'A',  'B',  'C',  0x02, 0x7C};
const Bytes kShortProgress = {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00, 0x02, 0x06, 'Z', 0x02, 0x0F};

struct Stream {
    const char* name;
    Bytes bytes;
    Log lines;
};

Bytes SyncPairsInside() {
    // Payload A5 5A, sum FF + 80 + 19 + 02 + FF = 0299.
    return {0xA5, 0x5A, 0x80, 0x00, 0x19, 0x00, 0x02, 0xA5, 0x5A, 0x02, 0x99};
}

const Stream kStreams[] = {
    {"OneFrame", kVolume, {kVolumeLine}},
    {"EmptyPayload", kLanguage, {kLanguageLine}},
    {"TwoFrames", kVolume + kLanguage, {kVolumeLine, kLanguageLine}},
    {"GarbageAround",
     Bytes{0x00, 0xFF, 0xA5} + kVolume + Bytes{0x5A, 0x80} + kLanguage,
     {kVolumeLine, kLanguageLine}},
    {"FalseSyncFirst", Bytes{0xA5} + kVolume, {kVolumeLine}},
    {"SecondSyncByteFirst", Bytes{0x5A} + kVolume, {kVolumeLine}},
    {"SyncPairIsData", SyncPairsInside() + kLanguage, {kVolumeLine, kLanguageLine}},
    {"LengthHighByteBeyond",
     Bytes{0xA5, 0x5A, 0x80, 0x00, 0x19, 0x01, 0x00} + kVolume,
     {kVolumeLine}},
    {"LengthJustBeyond", Bytes{0xA5, 0x5A, 0x80, 0x00, 0x19, 0x00, 0x41} + kVolume, {kVolumeLine}},
    {"LengthLargest", Bytes{0xA5, 0x5A, 0x80, 0x00, 0x19, 0xFF, 0xFF} + kVolume, {kVolumeLine}},
    {"LongestPayload",
     DvrFrameBytes(0x80, 0x0019, Bytes(64, 0xA5)) + kLanguage,
     {kVolumeLine, kLanguageLine}},
    {"WrongSumLowByte",
     Bytes{0xA5, 0x5A, 0x80, 0x00, 0x19, 0x00, 0x01, 0x07, 0x01, 0xA1} + kLanguage,
     {kLanguageLine}},
    {"WrongSumHighByte",
     Bytes{0xA5, 0x5A, 0x80, 0x00, 0x19, 0x00, 0x01, 0x07, 0x00, 0xA0} + kLanguage,
     {kLanguageLine}},
    // The byte lost from the first frame is made up from the second, which goes with it.
    {"LostByteTakesTheNextFrame",
     Bytes{0xA5, 0x5A, 0x80, 0x00, 0x19, 0x00, 0x01, 0x07, 0x01} + kVolume + kLanguage,
     {kLanguageLine}},
    {"PayloadIsClearedBetweenFrames",
     kLongProgress + kShortProgress,
     {"\tFW_Upgrade_Version_IND, (0x002E)", "\tFW_Upgrade_Version_IND, Percent:5%",
      "\tFW_Upgrade_Version_IND, Bin Version:ABC", "\tFW_Upgrade_Version_IND, (0x002E)",
      "\tFW_Upgrade_Version_IND, Percent:6%", "\tFW_Upgrade_Version_IND, Bin Version:Z"}},
};

class ParserTest : public testing::TestWithParam<Stream> {
  protected:
    Platform platform_;
};

TEST_P(ParserTest, FindsFramesWhereverTheStreamIsSplit) {
    const Stream& stream = GetParam();
    const auto size = static_cast<DWORD>(stream.bytes.size());
    platform_.Run([&] {
        ASSERT_TRUE(Memory_Init());
        for (DWORD split = 1; split <= size; ++split) {
            platform_.board.ClearOutput();
            UART_ParseData(stream.bytes.data(), split);
            if (split < size)
                UART_ParseData(stream.bytes.data() + split, size - split);
            EXPECT_EQ(ProgramLog(platform_.board), stream.lines) << "split at " << split;
        }
        platform_.board.ClearOutput();
        for (const std::uint8_t byte : stream.bytes)
            UART_ParseData(&byte, 1);
        EXPECT_EQ(ProgramLog(platform_.board), stream.lines) << "byte by byte";
        Memory_DeInit();
    });
}

INSTANTIATE_TEST_SUITE_P(Streams, ParserTest, testing::ValuesIn(kStreams),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ParseData, RefusesNothingWithoutLosingItsPlace) {
    Platform platform;
    platform.Run([&] {
        ASSERT_TRUE(Memory_Init());
        UART_ParseData(kVolume.data(), 5);
        SetLastError(ERROR_SUCCESS);
        UART_ParseData(nullptr, 3);
        UART_ParseData(kVolume.data(), 0);
        UART_ParseData(kVolume.data() + 5, static_cast<DWORD>(kVolume.size() - 5));
        Memory_DeInit();
    });
    const std::string refusal =
        "\tUART_ParseData, (!p_byRead || nSize<=0) fail!!!, ErrorCode(0), Parser.cpp(#)";
    EXPECT_EQ(ProgramLog(platform.board), (Log{refusal, refusal, kVolumeLine}));
}

TEST(ParseData, RandomBytesLeaveTheNextFrameFound) {
    Platform platform;
    std::mt19937 random(20);
    platform.Run([&] {
        ASSERT_TRUE(Memory_Init());
        for (int round = 0; round < 200; ++round) {
            Bytes noise(300);
            for (std::uint8_t& byte : noise) {
                // Sync pairs and short lengths often enough to get past them.
                const auto draw = static_cast<unsigned>(random());
                byte = draw % 4 == 0 ? 0xA5 : draw % 4 == 1 ? 0x5A : (draw >> 8) & 0xFF;
            }
            UART_ParseData(noise.data(), static_cast<DWORD>(noise.size()));
            // More than the rest of any frame.
            const Bytes silence(80, 0x00);
            UART_ParseData(silence.data(), static_cast<DWORD>(silence.size()));
            platform.board.ClearOutput();
            UART_ParseData(kVolume.data(), static_cast<DWORD>(kVolume.size()));
            ASSERT_EQ(ProgramLog(platform.board), Log{kVolumeLine}) << "round " << round;
        }
        Memory_DeInit();
    });
}

}  // namespace
}  // namespace tests
