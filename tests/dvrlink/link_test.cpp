#include <gtest/gtest.h>

#include <algorithm>

#include "dvrlink/LinkState.h"
#include "dvrlink/SerialPort.h"
#include "dvrlink/UART.h"
#include "link_fixture.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;

using Log = std::vector<std::string>;

const Bytes kOpeningQueries = {
    0xA5, 0x5A, 0x10, 0x80, 0x10, 0, 1, 0, 0x01, 0xA0,  // DVR_RunningState
    0xA5, 0x5A, 0x10, 0x80, 0x11, 0, 1, 0, 0x01, 0xA1,  // DVR_Mode
    0xA5, 0x5A, 0x10, 0x80, 0x2E, 0, 1, 0, 0x01, 0xBE,  // FW_Upgrade_Version
    0xA5, 0x5A, 0x10, 0x80, 0x26, 0, 1, 0, 0x01, 0xB6,  // StorageCardStatus
};

int Count(const Log& log, const std::string& line) {
    return static_cast<int>(std::count(log.begin(), log.end(), line));
}

TEST(Link, OpensTheConversationAndHearsTheDvr) {
    LinkFixture link;
    link.DvrSends(kernel::Now() + 1s, DvrFrameBytes(0x80, 0x0019, {7}));
    link.platform.Run([&] {
        ASSERT_TRUE(UART_Init());
        Sleep(2000);
        DCB settings{};
        settings.DCBlength = sizeof settings;
        EXPECT_TRUE(GetCommState(g_hComPort, &settings));
        EXPECT_EQ(settings.BaudRate, 460800U);
        EXPECT_EQ(settings.ByteSize, 8);
        EXPECT_EQ(settings.Parity, NOPARITY);
        EXPECT_EQ(settings.StopBits, ONESTOPBIT);
        COMMTIMEOUTS timeouts{};
        EXPECT_TRUE(GetCommTimeouts(g_hComPort, &timeouts));
        EXPECT_EQ(timeouts.ReadIntervalTimeout, 0U);
        EXPECT_EQ(timeouts.ReadTotalTimeoutMultiplier, 50U);
        EXPECT_EQ(timeouts.ReadTotalTimeoutConstant, 50U);
        EXPECT_EQ(timeouts.WriteTotalTimeoutMultiplier, 10U);
        EXPECT_EQ(timeouts.WriteTotalTimeoutConstant, 1000U);
        DWORD mask = 0;
        EXPECT_TRUE(GetCommMask(g_hComPort, &mask));
        EXPECT_EQ(mask, 0x0081U);
        EXPECT_TRUE(UART_DeInit());
    });
    EXPECT_EQ(link.received_by_dvr, kOpeningQueries);
    EXPECT_EQ(ProgramLog(link.platform.board),
              (Log{"+++UART_Init", "+++COM_Init", "---COM_Init", "---UART_Init",
                   "+++ThreadProc_COM_Rx", "\tPlay_Volume_IND, (0x0019)", "---ThreadProc_COM_Rx"}));
}

TEST(Link, SecondStartChangesNothing) {
    LinkFixture link;
    link.platform.Run([&] {
        ASSERT_TRUE(UART_Init());
        Sleep(500);
        const HANDLE port = g_hComPort;
        EXPECT_TRUE(UART_Init());
        Sleep(500);
        EXPECT_EQ(g_hComPort.load(), port);
        UART_DeInit();
    });
    EXPECT_EQ(link.received_by_dvr, kOpeningQueries);
    const Log log = ProgramLog(link.platform.board);
    EXPECT_EQ(Count(log, "+++COM_Init"), 1);
    EXPECT_EQ(Count(log, "+++ThreadProc_COM_Rx"), 1);
    EXPECT_EQ(Count(log, "---UART_Init"), 2);
}

TEST(Link, StartsAgainAfterAStop) {
    LinkFixture link;
    Bytes twice = kOpeningQueries;
    twice.insert(twice.end(), kOpeningQueries.begin(), kOpeningQueries.end());
    link.platform.Run([&] {
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(UART_Init());
            Sleep(500);
            UART_DeInit();
            EXPECT_EQ(g_hComPort.load(), nullptr);
            EXPECT_EQ(g_pSendLock.load(), nullptr);
            EXPECT_EQ(g_pCheckSumLock.load(), nullptr);
        }
    });
    EXPECT_EQ(link.received_by_dvr, twice);
}

TEST(Link, StopOfALinkThatNeverStartedLogsNothing) {
    Platform platform;
    platform.Run([] {
        EXPECT_TRUE(UART_DeInit());
        EXPECT_TRUE(COM_DeInit());
        EXPECT_TRUE(Memory_DeInit());
    });
    EXPECT_EQ(ProgramLog(platform.board), Log{});
}

// The processor changes hands between any two calls, so some stops come before the thread's first.
TEST(Link, StopRightAfterTheStartWins) {
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        LinkFixture link({.seed = seed, .preempt = true});
        link.platform.Run([&] {
            ASSERT_TRUE(UART_Init());
            UART_DeInit();
            EXPECT_EQ(g_bReceiveRunning, FALSE);
        });
        EXPECT_EQ(Count(ProgramLog(link.platform.board), "---ThreadProc_COM_Rx"), 1)
            << "seed " << seed;
    }
}

TEST(Link, StopTakesNoLongerThanAReadAndTheTwoPauses) {
    LinkFixture link;
    kernel::Duration taken{};
    link.platform.Run([&] {
        ASSERT_TRUE(UART_Init());
        Sleep(1030);
        const kernel::Time before = kernel::Now();
        UART_DeInit();
        taken = kernel::Now() - before;
    });
    EXPECT_GE(taken, 20ms);
    EXPECT_LE(taken, 100ms + 1ms + 20ms);
}

TEST(Link, StopEndsUnderAFloodOfReports) {
    LinkFixture link;
    Bytes flood;
    for (int count = 0; count < 4000; ++count) {
        const Bytes frame = DvrFrameBytes(0x80, 0x0026, {1});
        flood.insert(flood.end(), frame.begin(), frame.end());
    }
    link.DvrSends(kernel::Now() + 100ms, flood);
    kernel::Duration taken{};
    link.platform.Run([&] {
        ASSERT_TRUE(UART_Init());
        Sleep(300);
        const kernel::Time before = kernel::Now();
        UART_DeInit();
        taken = kernel::Now() - before;
    });
    EXPECT_LE(taken, 200ms);
    const Log log = ProgramLog(link.platform.board);
    EXPECT_GT(Count(log, "\tStorageCardStatus_IND, (0x0026)"), 100);
    EXPECT_EQ(log.back(), "---ThreadProc_COM_Rx");
}

// Both threads at once in earnest, for the sanitizers' eyes.
TEST(Link, SendsWhileItReceivesInParallel) {
    constexpr int kReports = 20;
    constexpr int kCommands = 100;
    LinkFixture link({.mode = kernel::Mode::kFreeRunning, .speed = 50.0});
    link.platform.Run([&] {
        ASSERT_TRUE(UART_Init());
        for (int report = 1; report <= kReports; ++report)
            link.DvrSends(kernel::Now() + report * 50ms, DvrFrameBytes(0x80, 0x0019, {7}));
        for (int count = 0; count < kCommands; ++count) {
            UART_SendCommand(0x0012, nullptr, 0);
            Sleep(15);
        }
        const auto heard = [&] {
            return Count(ProgramLog(link.platform.board), "\tPlay_Volume_IND, (0x0019)");
        };
        for (int tries = 0; tries < 1000 && heard() < kReports; ++tries)
            Sleep(50);
        EXPECT_EQ(heard(), kReports);
        UART_DeInit();
    });
    link.platform.RunFor(1s);
    EXPECT_EQ(link.received_by_dvr.size(), kOpeningQueries.size() + kCommands * 9U);
}

// A silent line costs one empty read per 100 ms and a pause of 1 ms.
TEST(Link, SilentLineIsReadTenTimesASecond) {
    LinkFixture link;
    kernel::Time first{};
    link.platform.Run([&] {
        ASSERT_TRUE(Memory_Init());
        ASSERT_TRUE(COM_Init());
        const kernel::Time before = kernel::Now();
        BYTE byte = 0;
        DWORD received = 1;
        EXPECT_TRUE(ReadFile(g_hComPort, &byte, 1, &received, nullptr));
        EXPECT_EQ(received, 0U);
        first = kernel::Now() - before;
        COM_DeInit();
        Memory_DeInit();
    });
    EXPECT_EQ(first, 100ms);
}

TEST(Link, WithoutThePort) {
    Platform platform;
    platform.Run([&] {
        EXPECT_FALSE(UART_Init());
        EXPECT_EQ(g_bReceiveRunning, FALSE);
        EXPECT_EQ(g_hComPort.load(), nullptr);
        EXPECT_NE(g_pSendLock.load(), nullptr) << "the locks stay until the stop";
        UART_DeInit();
        EXPECT_EQ(g_pSendLock.load(), nullptr);
    });
    EXPECT_EQ(
        ProgramLog(platform.board),
        (Log{"+++UART_Init", "+++COM_Init",
             "\tCOM_Init, CreateFile() fail!!!, ErrorCode(55), SerialPort.cpp(#)", "---COM_Init",
             "\tUART_Init, COM_Init() fail!!!, ErrorCode(55), Link.cpp(#)", "---UART_Init"}));
}

// A line whose settings cannot be read or written.
class StubbornLine final : public platform::device::SerialLine {
  public:
    StubbornLine(DWORD read_error, DWORD apply_error)
        : read_error_(read_error), apply_error_(apply_error) {}

    DWORD Open(Receiver) override { return ERROR_SUCCESS; }
    void Close() override {}
    DWORD ReadSettings(DCB&) override { return read_error_; }
    DWORD ApplySettings(const DCB&) override { return apply_error_; }
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override { return bytes.size(); }
    void OnRoom(std::function<void()>) override {}

  private:
    const DWORD read_error_;
    const DWORD apply_error_;
};

TEST(Link, PortThatCannotBeConfiguredIsClosedAgain) {
    const struct {
        DWORD read_error;
        DWORD apply_error;
        const char* line;
    } cases[] = {
        {5, 0, "\tCOM_Init, GetCommState() fail!!!, ErrorCode(5), SerialPort.cpp(#)"},
        {0, 31, "\tCOM_Init, SetCommState() fail!!!, ErrorCode(31), SerialPort.cpp(#)"},
    };
    for (const auto& test : cases) {
        Platform platform;
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(
            std::make_shared<StubbornLine>(test.read_error, test.apply_error));
        platform.Run([&] {
            EXPECT_FALSE(COM_Init());
            EXPECT_EQ(g_hComPort.load(), nullptr);
        });
        EXPECT_EQ(ProgramLog(platform.board), (Log{"+++COM_Init", test.line, "---COM_Init"}));
    }
}

}  // namespace
}  // namespace tests
