#include <gtest/gtest.h>

#include "dvrlink/LinkState.h"
#include "dvrlink/SerialPort.h"
#include "dvrlink/UART.h"
#include "link_fixture.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;

struct SentFrame {
    const char* name;
    WORD command;
    Bytes payload;
    Bytes wire;
};

Bytes LargestFrame() {
    Bytes wire = {0xA5, 0x5A, 0x10, 0x00, 0x10, 0x00, 0x40};
    wire.insert(wire.end(), 64, 0xFF);
    wire.insert(wire.end(), {0x41, 0x1F});
    return wire;
}

const SentFrame kSentFrames[] = {
    {"RunningStateQuery", 0x8010, {0}, {0xA5, 0x5A, 0x10, 0x80, 0x10, 0, 1, 0, 0x01, 0xA0}},
    {"ModeQuery", 0x8011, {0}, {0xA5, 0x5A, 0x10, 0x80, 0x11, 0, 1, 0, 0x01, 0xA1}},
    {"VersionQuery", 0x802E, {0}, {0xA5, 0x5A, 0x10, 0x80, 0x2E, 0, 1, 0, 0x01, 0xBE}},
    {"CardQuery", 0x8026, {0}, {0xA5, 0x5A, 0x10, 0x80, 0x26, 0, 1, 0, 0x01, 0xB6}},
    {"RebootOrder", 0x001C, {0}, {0xA5, 0x5A, 0x10, 0x00, 0x1C, 0, 1, 0, 0x01, 0x2C}},
    {"EmptyPayload", 0x0010, {}, {0xA5, 0x5A, 0x10, 0x00, 0x10, 0, 0, 0x01, 0x1F}},
    {"SumBeyond16Bits", 0x0010, Bytes(64, 0xFF), LargestFrame()},
};

class SentFrameTest : public testing::TestWithParam<SentFrame> {};

TEST_P(SentFrameTest, GoesOutWhole) {
    const SentFrame& frame = GetParam();
    LinkFixture link;
    link.platform.Run([&] {
        ASSERT_TRUE(Memory_Init());
        ASSERT_TRUE(COM_Init());
        // Without a payload the pointer must not be read.
        UART_SendCommand(frame.command, frame.payload.empty() ? nullptr : frame.payload.data(),
                         static_cast<WORD>(frame.payload.size()));
        Sleep(100);
        COM_DeInit();
        Memory_DeInit();
    });
    EXPECT_EQ(link.received_by_dvr, frame.wire);
}

INSTANTIATE_TEST_SUITE_P(Frames, SentFrameTest, testing::ValuesIn(kSentFrames),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SendCommand, RefusesWhatCannotBeSentAndSendsTheNextFrame) {
    LinkFixture link;
    const Bytes payload(65, 0x11);
    link.platform.Run([&] {
        SetLastError(ERROR_SUCCESS);
        UART_SendCommand(0x8010, payload.data(), 1);
        ASSERT_TRUE(Memory_Init());
        SetLastError(ERROR_SUCCESS);
        UART_SendCommand(0x8010, payload.data(), 1);
        ASSERT_TRUE(COM_Init());
        link.platform.board.ClearOutput();
        SetLastError(ERROR_SUCCESS);
        UART_SendCommand(0x8010, payload.data(), 65);
        UART_SendCommand(0x8010, nullptr, 1);
        UART_BuildFrame(0x8010, payload.data(), 0xFFFF);
        UART_SendCommand(0x0010, nullptr, 0);
        Sleep(100);
        COM_DeInit();
        Memory_DeInit();
    });
    EXPECT_EQ(ProgramLog(link.platform.board),
              (std::vector<std::string>{
                  "\tUART_SendCommand, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)",
                  "\tUART_SendCommand, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)",
                  "\tUART_BuildFrame, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)"}));
    EXPECT_EQ(link.received_by_dvr, (Bytes{0xA5, 0x5A, 0x10, 0x00, 0x10, 0, 0, 0x01, 0x1F}));
}

TEST(SendCommand, WithoutLocksOrPortOnlyLogs) {
    LinkFixture link;
    const BYTE payload[] = {0};
    link.platform.Run([&] {
        SetLastError(ERROR_SUCCESS);
        UART_SendCommand(0x8010, payload, 1);
        ASSERT_TRUE(Memory_Init());
        UART_SendCommand(0x8010, payload, 1);
        Memory_DeInit();
        SetLastError(ERROR_SUCCESS);
        UART_SendCommand(0x8010, payload, 1);
    });
    EXPECT_EQ(ProgramLog(link.platform.board),
              (std::vector<std::string>{
                  "\tUART_SendCommand, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)",
                  "\tUART_SendCommand, WriteFile() fail!!!, ErrorCode(6), UART.cpp(#)",
                  "\tUART_SendCommand, Invalid Arguments!!!, ErrorCode(0), UART.cpp(#)"}));
}

// Two threads send frames of different lengths while the processor changes hands at every call.
TEST(SendCommand, FramesOfTwoThreadsStayWhole) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        LinkFixture link({.seed = seed, .preempt = true});
        const Bytes payload(40, 0x22);
        link.platform.Run([&] {
            ASSERT_TRUE(Memory_Init());
            ASSERT_TRUE(COM_Init());
            const auto send_short = [](LPVOID) -> DWORD {
                for (int count = 0; count < 20; ++count)
                    UART_SendCommand(0x0011, nullptr, 0);
                return 0;
            };
            const HANDLE other = CreateThread(nullptr, 0, send_short, nullptr, 0, nullptr);
            ASSERT_NE(other, nullptr);
            for (int count = 0; count < 20; ++count)
                UART_SendCommand(0x0012, payload.data(), static_cast<WORD>(payload.size()));
            EXPECT_EQ(WaitForSingleObject(other, 10000), WAIT_OBJECT_0);
            CloseHandle(other);
            Sleep(1000);
            COM_DeInit();
            Memory_DeInit();
        });
        Bytes short_frame = DvrFrameBytes(0x10, 0x0011, {});
        Bytes long_frame = DvrFrameBytes(0x10, 0x0012, payload);
        int short_frames = 0;
        int long_frames = 0;
        std::span<const std::uint8_t> rest(link.received_by_dvr);
        const auto take = [&rest](const Bytes& frame) {
            if (rest.size() < frame.size() || !std::equal(frame.begin(), frame.end(), rest.begin()))
                return false;
            rest = rest.subspan(frame.size());
            return true;
        };
        for (bool found = true; found;) {
            found = false;
            if (take(short_frame)) {
                ++short_frames;
                found = true;
            } else if (take(long_frame)) {
                ++long_frames;
                found = true;
            }
        }
        EXPECT_TRUE(rest.empty()) << "a frame in pieces, seed " << seed;
        EXPECT_EQ(short_frames, 20) << "seed " << seed;
        EXPECT_EQ(long_frames, 20) << "seed " << seed;
    }
}

TEST(CheckSum, SumsTheRecordOrRefuses) {
    Platform platform;
    DvrFrame frame{};
    frame.sync = 0xA55A;
    frame.type = 0x80;
    frame.command = 0x0010;
    frame.length = 64;
    std::fill(std::begin(frame.payload), std::end(frame.payload), BYTE{0xFF});
    platform.Run([&] {
        DWORD sum = 7;
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum)) << "before Memory_Init";
        ASSERT_TRUE(Memory_Init());
        EXPECT_FALSE(UART_CheckSum(nullptr, sizeof frame, &sum));
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame - 1, &sum));
        frame.length = 65;
        EXPECT_FALSE(UART_CheckSum(&frame, sizeof frame, &sum));
        EXPECT_EQ(sum, 7U);
        frame.length = 64;
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, nullptr));
        EXPECT_TRUE(UART_CheckSum(&frame, sizeof frame, &sum));
        // FF + 80 + 10 + 40 + 64 * FF, not reduced to 16 bits.
        EXPECT_EQ(sum, 0xFFU + 0x80U + 0x10U + 0x40U + 0x3FC0U);
        Memory_DeInit();
    });
}

}  // namespace
}  // namespace tests
