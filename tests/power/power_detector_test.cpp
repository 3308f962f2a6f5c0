#include "power/CPowerDetector.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <pm.h>

#include <algorithm>
#include <set>

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

// The broadcasts: index of the message and parameters.
std::string g_broadcasts;

void ObserveBroadcasts() {
    g_broadcasts.clear();
    platform::window::ObserveBroadcasts([](UINT message, WPARAM wparam, LPARAM lparam) {
        const auto name = platform::window::RegisteredMessageName(message);
        g_broadcasts += std::to_string(std::ranges::find(kMessages, name) - kMessages) + "(" +
                        std::to_string(wparam) + "," + std::to_string(lparam) + ")";
    });
}

// The broadcasts since the last call, after the detector had time for another attempt.
std::string TakeBroadcasts() {
    Sleep(150);
    return std::exchange(g_broadcasts, "");
}

TEST(PowerDetector, AcknowledgesEveryRequestAndBroadcastsEveryChangeOfTheSupply) {
    // The coordinator creates the events before, or opens those of the detector.
    for (const bool coordinator_first : {true, false}) {
        Platform platform;
        platform.board.supply = {.ac_line_status = 255, .battery_flag = 128};
        ObserveBroadcasts();
        platform.Run([coordinator_first] {
            HANDLE events[3] = {};
            if (coordinator_first)
                for (int request = 0; request < 3; ++request)
                    events[request] = CreateEventW(nullptr, FALSE, TRUE, kRequests[request]);
            CPowerDetector detector;
            ASSERT_TRUE(detector.Init());
            EXPECT_EQ(TakeBroadcasts(), coordinator_first ? "0(0,0)1(0,0)2(0,0)" : "");
            if (!coordinator_first)
                for (int request = 0; request < 3; ++request)
                    events[request] = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[request]);
            for (const int request : {2, 0, 1}) {
                SetEvent(events[request]);
                EXPECT_EQ(TakeBroadcasts(), std::to_string(request) + "(0,0)");
            }
            EXPECT_EQ(TakeBroadcasts(), "") << "the events reset themselves";
            for (const HANDLE event : events)
                CloseHandle(event);
            for (const DWORD event : {PBT_POWERSTATUSCHANGE, PBT_RESUME, PBT_POWERSTATUSCHANGE})
                Notify(event);
            EXPECT_EQ(TakeBroadcasts(), "3(255,128)3(255,128)");
        });
    }
}

// The program's lines of failures, without the prefix.
std::vector<std::string> FailureLines(const PlainBoard& board) {
    std::vector<std::string> failures;
    for (const std::wstring& line : board.lines())
        if (line.find(L"fail!!!") != line.npos)
            failures.emplace_back(line.begin() + 14, line.end());
    return failures;
}

// One call of the program fails: the failure line, each at a line of its own, and what still works.
TEST(PowerDetectorFailures, AreLoggedAndLeaveTheRestAlone) {
    const struct {
        const char* call;
        std::uint64_t skip;
        BOOL ready;
        std::string where;       // of the one failure line; none when empty
        std::string broadcasts;  // after a suspend request and a change of the supply
        std::size_t handles;     // left because they could not be closed
        DWORD error = 1234;
    } rows[] = {
        {"CreateThread", 0, TRUE, "Init, CreateThread()", "3(1,1)", 0},
        {"CreateThread", 1, TRUE, "Init, CreateThread()", "0(0,0)", 0},
        // Of the three acknowledgements and of the power status.
        {"RegisterWindowMessageW", 0, TRUE, "Init, RegisterWindowMessage()", "3(1,1)", 0},
        {"RegisterWindowMessageW", 1, TRUE, "Init, RegisterWindowMessage()", "0(0,0)3(1,1)", 0},
        {"RegisterWindowMessageW", 2, TRUE, "Init, RegisterWindowMessage()", "0(0,0)3(1,1)", 0},
        {"RegisterWindowMessageW", 3, TRUE, "Init, RegisterWindowMessage()", "0(0,0)", 0},
        // The request events, then the two that stop the threads.
        {"CreateEventW", 0, TRUE, "Init, CreateEvent()", "3(1,1)", 0},
        {"CreateEventW", 2, TRUE, "Init, CreateEvent()", "0(0,0)3(1,1)", 0},
        {"CreateEventW", 1, TRUE, "Init, CreateEvent()", "0(0,0)3(1,1)", 0},
        {"CreateEventW", 3, FALSE, "Init, CreateEvent()", "", 0},
        {"CreateEventW", 4, FALSE, "Init, CreateEvent()", "", 0},
        {"CreateMsgQueue", 0, FALSE, "Init, CreateMsgQueue()", "", 0},
        {"RequestPowerNotifications", 0, FALSE, "Init, RequestPowerNotifications()", "", 0},
        {"ReadMsgQueue", 0, TRUE, "ThreadProc_PowerDetector, ReadMsgQueue()", "0(0,0)3(1,1)", 0},
        {"ReadMsgQueue", 0, TRUE, "", "0(0,0)3(1,1)", 0, ERROR_TIMEOUT},
        {"StopPowerNotifications", 0, TRUE, "DeInit, StopPowerNotifications()", "0(0,0)3(1,1)", 1},
        {"CloseMsgQueue", 0, TRUE, "DeInit, CloseMsgQueue()", "0(0,0)3(1,1)", 1},
        // After the one of the request: those that wake the threads to their end.
        {"SetEvent", 1, TRUE, "DeInit, SetEvent()", "0(0,0)3(1,1)", 0},
        {"SetEvent", 2, TRUE, "DeInit, SetEvent()", "0(0,0)3(1,1)", 0},
    };
    std::set<std::string> lines;
    std::size_t logged = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.skip));
        Platform platform;
        platform.AllowHandles(row.handles);
        kernel::AddCallFault({.call = row.call, .skip = row.skip, .error = row.error});
        ObserveBroadcasts();
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
            EXPECT_EQ(TakeBroadcasts(), row.broadcasts);
            CloseHandle(suspend);
        });
        const std::vector<std::string> failures = FailureLines(platform.board);
        ASSERT_EQ(failures.size(), row.where.empty() ? 0U : 1U);
        if (row.where.empty())
            continue;
        EXPECT_TRUE(failures[0].starts_with("\tCPowerDetector::" + row.where +
                                            " fail!!!, ErrorCode(1234), CPowerDetector.cpp("))
            << failures[0];
        lines.insert(failures[0]);
        ++logged;
    }
    EXPECT_EQ(lines.size(), logged) << "two calls share a line";
}

// A thread that cannot be woken is left behind with what it uses; it ends once it is woken.
TEST(PowerDetectorFailures, OfEveryWakeUpLeaveTheThreadsBehind) {
    Platform platform;
    platform.Run([&] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        Sleep(10);
        const std::size_t handles = kernel::HandleCount();
        kernel::AddCallFault({.call = "SetEvent", .times = kernel::kForEver});
        const kernel::Time start = kernel::Now();
        detector.DeInit();
        EXPECT_LT(kernel::Now() - start, 5s);
        EXPECT_TRUE(detector.HasThread());
        EXPECT_EQ(handles - kernel::HandleCount(), 1U) << "only the notifications are stopped";
        EXPECT_EQ(FailureLines(platform.board).size(), 2U);
        kernel::ClearCallFaults();
        detector.DeInit();
        EXPECT_FALSE(detector.HasThread());
    });
}

// A record that cannot be read wakes the detector again and again. The queue holds three of them.
TEST(PowerDetectorFailures, OfEveryReadAreLoggedTenTimesASecond) {
    Platform platform;
    ObserveBroadcasts();
    platform.Run([&] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        kernel::AddCallFault({.call = "ReadMsgQueue", .times = kernel::kForEver});
        for (int record = 0; record < 4; ++record)
            Notify(PBT_POWERSTATUSCHANGE);
        Sleep(2000);
        EXPECT_NEAR(static_cast<double>(FailureLines(platform.board).size()), 20, 1);
        kernel::ClearCallFaults();
        EXPECT_EQ(TakeBroadcasts(), "3(1,1)3(1,1)3(1,1)");
    });
}

// With a switch of threads between any two calls, some stops come before a thread's first one. Once
// free running, for the sanitizers.
TEST(PowerDetectorThreads, EndWhenStoppedRightAfterTheStart) {
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

TEST(PowerDetectorThreads, EndAtOnceWithoutAnObject) {
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

// Each thread wakes to waits that fail, and works again afterwards.
TEST(PowerDetectorFailures, OfWaitsArePassedOver) {
    Platform platform;
    ObserveBroadcasts();
    platform.Run([] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        const HANDLE request = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[1]);
        const auto wake_both = [&] {
            SetEvent(request);
            const std::string broadcasts = TakeBroadcasts();
            Notify(PBT_POWERSTATUSCHANGE);
            return broadcasts + TakeBroadcasts();
        };
        const std::string broadcasts = wake_both();
        EXPECT_EQ(broadcasts, "1(0,0)3(1,1)");
        ASSERT_EQ(kernel::AddCallFault({.call = "WaitForMultipleObjects", .times = 8}), "");
        EXPECT_EQ(wake_both(), broadcasts);
        Sleep(500);
        EXPECT_EQ(kernel::FailedCallCount(), 8U);
        EXPECT_EQ(wake_both(), broadcasts);
        CloseHandle(request);
    });
}

}  // namespace
}  // namespace tests
