#include <cstring>

#include "link_fixture.h"
#include "platform/kernel/call_faults.h"
#include "tests/support/com9.h"

namespace tests {
namespace {

// Running state, mode, version and card.
const std::string kOpeningQueries =
    "A55A 10 8010 0001 00 01A0 A55A 10 8011 0001 00 01A1"
    "A55A 10 802E 0001 00 01BE A55A 10 8026 0001 00 01B6";

TEST(Link, SendsItsQueriesReceivesAndStartsOnce) {
    LinkFixture link;
    link.platform.Run([&] {
        EXPECT_TRUE(UART_DeInit() && COM_DeInit() && Memory_DeInit());
        EXPECT_EQ(link.TakeLog(), "") << "a stop before any start";
        for (int round = 1; round <= 2; ++round) {
            SCOPED_TRACE(round);
            ASSERT_TRUE(UART_Init());
            const HANDLE port = g_hComPort;
            COMMTIMEOUTS times{};
            EXPECT_TRUE(GetCommTimeouts(port, &times));
            EXPECT_EQ(std::memcmp(&times, &kProgramTimeouts, sizeof times), 0);
            DWORD mask = 0;
            EXPECT_TRUE(GetCommMask(port, &mask));
            EXPECT_EQ(mask, DWORD{EV_RXCHAR | EV_ERR});
            kernel::After(1s, [&] { link.line->Send(Hex(kVolume)); });
            Sleep(500);
            EXPECT_TRUE(UART_Init()) << "once more";
            EXPECT_EQ(g_hComPort.load(), port);
            Sleep(1000);
            EXPECT_TRUE(UART_DeInit());
            EXPECT_EQ(link.TakeLog(),
                      "+++UART_Init\n+++COM_Init\n---COM_Init\n---UART_Init\n"
                      "+++ThreadProc_COM_Rx\n+++UART_Init\n---UART_Init\n" +
                          kVolumeLine + "\n---ThreadProc_COM_Rx");
            EXPECT_EQ(std::exchange(link.received_by_dvr, {}), Hex(kOpeningQueries));
        }
    });
}

// An empty read takes 100 ms and a failed one no time; a pause of 1 ms follows either. A stop takes
// one read and two pauses of 10 ms, also while the DVR sends without a break.
TEST(Link, ReadsWithoutSpinningAndStopsAtOnce) {
    const struct {
        const char* line;
        DWORD milliseconds;
        double reads;
    } rows[] = {{"silent", 101000, 1000}, {"dead", 1000, 1000}, {"flooded", 500, 23040}};
    std::string flood;
    for (int reports = 0; reports < 4000; ++reports)
        flood += kVolume;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        LinkFixture link;
        link.platform.Run([&] {
            ASSERT_TRUE(UART_Init());
            Sleep(1);
            if (*row.line == 'd') {
                EXPECT_TRUE(CloseHandle(g_hComPort));
            } else if (*row.line == 'f') {
                kernel::After(100ms, [&] { link.line->Send(Hex(flood)); });
            }
            Sleep(101);  // the current read ends
            const std::uint64_t before = kernel::CallCount("ReadFile");
            Sleep(row.milliseconds);
            EXPECT_NEAR(static_cast<double>(kernel::CallCount("ReadFile") - before), row.reads,
                        row.reads / 500);
            const kernel::Time stop = kernel::Now();
            UART_DeInit();
            EXPECT_GE(kernel::Now() - stop, 20ms);
            EXPECT_LE(kernel::Now() - stop, 100ms + 1ms + 20ms);
        });
        EXPECT_EQ(link.Count("---ThreadProc_COM_Rx"), 1);
    }
}

// The receive thread sends its queries while this one sends and the DVR sends: with a switch of
// threads between any two calls, and once free running, for the sanitizers.
TEST(Link, KeepsTheFramesOfTwoThreadsWhole) {
    const Bytes frame = Hex("A55A 10 0012 0028" + std::string(80, '2') + "0699");
    const std::string text(frame.begin(), frame.end());
    for (std::uint64_t seed = 0; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        LinkFixture link(seed == 0
                             ? kernel::Options{.mode = kernel::Mode::kFreeRunning, .speed = 50.0}
                             : kernel::Options{.seed = seed, .preempt = true});
        link.platform.Run([&] {
            ASSERT_TRUE(UART_Init());
            // Only an open port receives.
            for (int report = 1; report <= 20; ++report)
                kernel::After(report * 20ms, [&] { link.line->Send(Hex(kVolume)); });
            for (int count = 0; count < 20; ++count)
                UART_SendCommand(0x0012, frame.data() + 7, 40);
            for (int tries = 0; tries < 1000 && link.Count(kVolumeLine) < 20; ++tries)
                Sleep(50);
            EXPECT_EQ(link.Count(kVolumeLine), 20);
            UART_DeInit();
            // Some of these stops come before the thread's first instruction.
            EXPECT_TRUE(UART_Init() && UART_DeInit());
            EXPECT_EQ(g_bReceiveRunning, FALSE);
        });
        link.platform.RunFor(1s);
        std::string wire(link.received_by_dvr.begin(), link.received_by_dvr.end());
        int whole = 0;
        for (std::size_t at; (at = wire.find(text)) != wire.npos; ++whole)
            wire.erase(at, text.size());
        EXPECT_EQ(whole, 20);
        EXPECT_EQ(Bytes(wire.begin(), wire.end()), Hex(kOpeningQueries + kOpeningQueries));
        EXPECT_EQ(link.Count("---ThreadProc_COM_Rx"), 2);
    }
}

// One call fails while the link starts or stops. Without the port there is no link, without the
// thread the link still sends.
TEST(Link, StartsWithoutWhatFails) {
    const std::pair<std::string, std::string> rows[] = {
        {"CreateFileW", "COM_Init, CreateFile"},
        {"GetCommState", "COM_Init, GetCommState"},
        {"SetCommState", "COM_Init, SetCommState"},
        {"SetCommTimeouts", "COM_Init, SetCommTimeouts"},
        {"CreateThread", "UART_Init, CreateThread"},
        {"CloseHandle", "UART_DeInit, COM_DeInit"},
    };
    for (const auto& [call, where] : rows) {
        SCOPED_TRACE(call);
        const bool closing = call == "CloseHandle";
        const bool port = closing || call == "CreateThread";
        LinkFixture link;
        link.platform.AllowHandles(closing ? 2 : 0);  // of the thread and of the port
        ASSERT_EQ(kernel::AddCallFault({.call = call, .times = 2, .error = 1234}), "");
        link.platform.Run([&] {
            EXPECT_EQ(UART_Init(), port);
            EXPECT_EQ(g_bReceiveRunning, closing);
            EXPECT_EQ(g_hComPort != nullptr, port);
            EXPECT_NE(g_pSendLock.load(), nullptr) << "the locks stay until the stop";
            UART_DeInit();
            EXPECT_EQ(g_pSendLock.load(), nullptr);
        });
        const std::string error = "() fail!!!, ErrorCode(1234), UART.cpp(#)";
        EXPECT_EQ(link.Count("\t" + where + error), 1);
        EXPECT_EQ(link.Count("\tUART_Init, COM_Init" + error), port ? 0 : 1);
        EXPECT_EQ(link.Count("---COM_Init") + link.Count("---UART_Init"), 2);
    }
}

}  // namespace
}  // namespace tests
