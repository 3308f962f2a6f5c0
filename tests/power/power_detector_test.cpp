#include "power/CPowerDetector.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <pm.h>

#include <algorithm>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "platform/powermgr/power_notifications.h"
#include "platform/window/screen.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;
using platform::powermgr::Notify;

const wchar_t* const kRequests[] = {L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerOFF_Request_"};
constexpr std::wstring_view kMessages[] = {
    L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_",
    L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_",
    L"_KESTA_Technology,Inc._Sodrey_PowerOFF_Acknowledge_",
    L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_"};

// What is broadcast: index of the message and parameters.
std::string g_heard;

void Listen() {
    g_heard.clear();
    platform::window::ObserveBroadcasts([](UINT message, WPARAM wparam, LPARAM lparam) {
        const auto name = platform::window::RegisteredMessageName(message);
        g_heard += std::to_string(std::ranges::find(kMessages, name) - kMessages) + "(" +
                   std::to_string(wparam) + "," + std::to_string(lparam) + ")";
    });
}

// The broadcasts since the last call, after the detector had time for another attempt.
std::string Hear() {
    Sleep(150);
    return std::exchange(g_heard, "");
}

TEST(PowerDetector, AcknowledgesEveryRequestAndTellsEveryChangeOfTheSupply) {
    // Events that the coordinator made before are used as it made them; those that it opens later
    // are the same ones.
    for (const bool coordinator_first : {true, false}) {
        Platform platform;
        platform.board.supply = {.ac_line_status = 255, .battery_flag = 128};
        Listen();
        platform.Run([coordinator_first] {
            HANDLE events[3] = {};
            if (coordinator_first)
                for (int request = 0; request < 3; ++request)
                    events[request] = CreateEventW(nullptr, FALSE, TRUE, kRequests[request]);
            CPowerDetector detector;
            ASSERT_TRUE(detector.Init());
            EXPECT_EQ(Hear(), coordinator_first ? "0(0,0)1(0,0)2(0,0)" : "");
            if (!coordinator_first)
                for (int request = 0; request < 3; ++request)
                    events[request] = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[request]);
            for (const int request : {2, 0, 1}) {
                SetEvent(events[request]);
                EXPECT_EQ(Hear(), std::to_string(request) + "(0,0)");
            }
            EXPECT_EQ(Hear(), "") << "the events reset themselves";
            for (const HANDLE event : events)
                CloseHandle(event);
            for (const DWORD event : {PBT_RESUME, PBT_POWERSTATUSCHANGE, PBT_POWERSTATUSCHANGE})
                Notify(event);
            EXPECT_EQ(Hear(), "3(255,128)3(255,128)");
        });
    }
}

// One call of the program fails; what is said, and what still works.
TEST(PowerDetectorFailures, AreLoggedAndLeaveTheRestAlone) {
    const struct {
        const char* call;
        std::uint64_t skip;
        BOOL ready;
        std::string where;    // of the one failure line; none when empty
        std::string heard;    // after a suspend request and a change of the supply
        std::size_t handles;  // left because they could not be closed
        DWORD error = 1234;
    } rows[] = {
        {"CreateThread", 0, TRUE, "Init, CreateThread()", "3(1,1)", 0},
        {"CreateThread", 1, TRUE, "Init, CreateThread()", "0(0,0)", 0},
        // The request events, the second of them missing, then the two that stop the threads.
        {"CreateEventW", 1, TRUE, "Init, CreateEvent()", "0(0,0)3(1,1)", 0},
        {"CreateEventW", 3, FALSE, "Init, CreateEvent()", "", 0},
        {"CreateEventW", 4, FALSE, "Init, CreateEvent()", "", 0},
        {"CreateMsgQueue", 0, FALSE, "Init, CreateMsgQueue()", "", 0},
        {"RequestPowerNotifications", 0, FALSE, "Init, RequestPowerNotifications()", "", 0},
        {"ReadMsgQueue", 0, TRUE, "ThreadProc_PowerDetector, ReadMsgQueue()", "0(0,0)3(1,1)", 0},
        {"ReadMsgQueue", 0, TRUE, "", "0(0,0)3(1,1)", 0, ERROR_TIMEOUT},
        {"StopPowerNotifications", 0, TRUE, "DeInit, StopPowerNotifications()", "0(0,0)3(1,1)", 2},
        {"CloseMsgQueue", 0, TRUE, "DeInit, CloseMsgQueue()", "0(0,0)3(1,1)", 1},
        // After the request's: what wakes the threads to their end.
        {"SetEvent", 1, TRUE, "DeInit, SetEvent()", "0(0,0)3(1,1)", 0},
        {"SetEvent", 2, TRUE, "DeInit, SetEvent()", "0(0,0)3(1,1)", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.skip));
        Platform platform;
        platform.AllowHandles(row.handles);
        kernel::AddCallFault({.call = row.call, .skip = row.skip, .error = row.error});
        Listen();
        platform.Run([&] {
            const std::size_t handles = kernel::HandleCount();
            CPowerDetector detector;
            EXPECT_EQ(detector.Init(), row.ready);
            EXPECT_EQ(kernel::HandleCount() == handles, !row.ready) << "all released at once";
            const HANDLE suspend = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[0]);
            if (suspend != nullptr)
                SetEvent(suspend);
            Sleep(1);
            Notify(PBT_POWERSTATUSCHANGE);
            EXPECT_EQ(Hear(), row.heard);
            CloseHandle(suspend);
        });
        std::string failures;
        for (const std::string& line : ProgramLog(platform.board))
            if (line.find("fail!!!") != line.npos)
                failures += line.substr(0, line.rfind(", "));
        EXPECT_EQ(failures, row.where.empty()
                                ? ""
                                : "\tCPowerDetector::" + row.where + " fail!!!, ErrorCode(1234)");
    }
}

// The processor changes hands between any two calls, so some stops come before a thread's first;
// and once in earnest, for the sanitizers' eyes.
TEST(PowerDetectorThreads, StopRightAfterTheStartWins) {
    for (std::uint64_t seed = 0; seed <= 40; ++seed) {
        const bool free_running = seed == 0;
        Platform platform(free_running
                              ? kernel::Options{.mode = kernel::Mode::kFreeRunning, .speed = 50.0}
                              : kernel::Options{.seed = seed, .preempt = true});
        const int rounds = free_running ? 20 : 1;
        platform.Run([&] {
            for (int round = 0; round < rounds; ++round) {
                CPowerDetector detector;
                EXPECT_TRUE(detector.Init());
                Notify(PBT_POWERSTATUSCHANGE);
                Sleep(static_cast<DWORD>(round));
            }
        });
        EXPECT_EQ(std::ranges::count(ProgramLog(platform.board),
                                     "---CPowerDetector::ThreadProc_PowerCommonCtrl"),
                  rounds)
            << "seed " << seed;
    }
}

TEST(PowerDetectorThreads, WithoutAnObjectEndAtOnce) {
    Platform platform;
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerDetector_static(nullptr), 0U);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerCommonCtrl_static(nullptr), 0U);
    const std::string begin = "\tCPowerDetector::ThreadProc_Power",
                      end =
                          "_static, (NULL==pThis) fail!!!, Invalid Arguments!!!, ErrorCode(0), "
                          "CPowerDetector.cpp(#)";
    EXPECT_EQ(ProgramLog(platform.board),
              (std::vector{begin + "Detector" + end, begin + "CommonCtrl" + end}));
}

// Each thread wakes to waits that fail, and is there again afterwards.
TEST(PowerDetectorFailures, OfWaitsArePassedOver) {
    Platform platform;
    Listen();
    platform.Run([] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        const HANDLE request = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[1]);
        const auto wake_both = [&] {
            SetEvent(request);
            const std::string heard = Hear();
            Notify(PBT_POWERSTATUSCHANGE);
            return heard + Hear();
        };
        const std::string heard = wake_both();
        EXPECT_EQ(heard, "1(0,0)3(1,1)");
        ASSERT_EQ(kernel::AddCallFault({.call = "WaitForMultipleObjects", .times = 8}), "");
        EXPECT_EQ(wake_both(), heard);
        Sleep(500);
        EXPECT_EQ(kernel::FailedCallCount(), 8U);
        EXPECT_EQ(wake_both(), heard);
        CloseHandle(request);
    });
}

}  // namespace
}  // namespace tests
