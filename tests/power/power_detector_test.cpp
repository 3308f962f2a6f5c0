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

// The coordinator creates the events before, or opens those of the detector.
TEST(PowerDetector, AcknowledgesEveryRequestAndBroadcastsEveryChangeOfTheSupply) {
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
            for (const int request : {2, 0, 1}) {
                if (!coordinator_first)
                    events[request] = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[request]);
                SetEvent(events[request]);
                EXPECT_EQ(TakeBroadcasts(), std::to_string(request) + "(0,0)");
                CloseHandle(events[request]);
            }
            EXPECT_EQ(TakeBroadcasts(), "") << "the events reset themselves";
            for (const DWORD event : {PBT_POWERSTATUSCHANGE, PBT_RESUME, PBT_POWERSTATUSCHANGE})
                Notify(event);
            EXPECT_EQ(TakeBroadcasts(), "3(255,128)3(255,128)");
        });
    }
}

// One call of the program fails: the failure line, each at a line of its own, and what still works.
TEST(PowerDetectorFailures, AreLoggedAndLeaveTheRestAlone) {
    const struct {
        std::string call;
        std::uint64_t skip;
        std::string function;    // of the failure line; nothing is logged when empty
        std::string broadcasts;  // after a suspend request and a change of the supply
    } rows[] = {
        {"CreateThread", 0, "Init", "3(1,1)"},
        {"CreateThread", 1, "Init", "0(0,0)"},
        // Of the three acknowledgements and of the power status.
        {"RegisterWindowMessageW", 0, "Init", "3(1,1)"},
        {"RegisterWindowMessageW", 1, "Init", "0(0,0)3(1,1)"},
        {"RegisterWindowMessageW", 2, "Init", "0(0,0)3(1,1)"},
        {"RegisterWindowMessageW", 3, "Init", "0(0,0)"},
        // The request events, then the two that stop the threads.
        {"CreateEventW", 0, "Init", "3(1,1)"},
        {"CreateEventW", 1, "Init", "0(0,0)3(1,1)"},
        {"CreateEventW", 2, "Init", "0(0,0)3(1,1)"},
        {"CreateEventW", 3, "Init", ""},
        {"CreateEventW", 4, "Init", ""},
        {"CreateMsgQueue", 0, "Init", ""},
        {"RequestPowerNotifications", 0, "Init", ""},
        {"ReadMsgQueue", 0, "ThreadProc_PowerDetector", "0(0,0)3(1,1)"},
        {"ReadMsgQueue", 0, "", "0(0,0)3(1,1)"},
        {"StopPowerNotifications", 0, "DeInit", "0(0,0)3(1,1)"},
        {"CloseMsgQueue", 0, "DeInit", "0(0,0)3(1,1)"},
        // After the one of the request: those that wake the threads to their end.
        {"SetEvent", 1, "DeInit", "0(0,0)3(1,1)"},
        {"SetEvent", 2, "DeInit", "0(0,0)3(1,1)"},
    };
    std::set<std::string> places;
    for (const auto& [call, skip, function, broadcasts] : rows) {
        SCOPED_TRACE(call + " " + std::to_string(skip));
        Platform platform;
        // What cannot be closed stays open.
        platform.AllowHandles(call == "StopPowerNotifications" || call == "CloseMsgQueue" ? 1 : 0);
        const DWORD error = function.empty() ? ERROR_TIMEOUT : 1234;
        kernel::AddCallFault({.call = call, .skip = skip, .error = error});
        ObserveBroadcasts();
        platform.Run([&] {
            const std::size_t handles = kernel::HandleCount();
            CPowerDetector detector;
            EXPECT_EQ(detector.Init(), !broadcasts.empty());
            EXPECT_EQ(kernel::HandleCount() == handles, broadcasts.empty()) << "all released";
            const HANDLE suspend = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[0]);
            if (suspend != nullptr)
                SetEvent(suspend);
            Sleep(1);
            Notify(PBT_POWERSTATUSCHANGE);
            EXPECT_EQ(TakeBroadcasts(), broadcasts);
            CloseHandle(suspend);
        });
        std::vector<std::wstring> failures = platform.board.lines();
        std::erase_if(failures, [](const auto& line) { return line.find(L"!!!") == line.npos; });
        ASSERT_EQ(failures.size(), function.empty() ? 0U : 1U);
        if (function.empty())
            continue;
        const std::string name = call.substr(0, call.size() - (call.ends_with("W") ? 1 : 0));
        const std::string line(failures[0].begin(), failures[0].end());
        EXPECT_TRUE(line.starts_with("[Tolvane.exe] \tCPowerDetector::" + function + ", " + name +
                                     "() fail!!!, ErrorCode(1234), CPowerDetector.cpp("))
            << line;
        EXPECT_TRUE(places.insert(line).second) << "two calls share a line";
    }
}

// A thread that cannot be woken is left behind with what it uses; it ends once it is woken.
TEST(PowerDetectorFailures, OfEveryWakeUpLeaveTheThreadsBehind) {
    Platform platform;
    platform.Run([&] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        Sleep(10);
        const std::size_t handles = kernel::HandleCount();
        kernel::AddCallFault({.call = "SetEvent", .times = kernel::kForEver, .error = 1234});
        const kernel::Time start = kernel::Now();
        detector.DeInit();
        EXPECT_LT(kernel::Now() - start, 5s);
        EXPECT_TRUE(detector.HasThread());
        EXPECT_EQ(handles - kernel::HandleCount(), 1U) << "only the notifications are stopped";
        EXPECT_EQ(std::ranges::count(ProgramLog(platform.board),
                                     "\tCPowerDetector::DeInit, SetEvent() fail!!!, "
                                     "ErrorCode(1234), CPowerDetector.cpp(#)"),
                  2);
        kernel::ClearCallFaults();
        detector.DeInit();
        EXPECT_FALSE(detector.HasThread());
    });
}

// With a switch of threads between any two calls, some stops come before a thread's first one. Once
// free running, for the sanitizers.
TEST(PowerDetectorThreads, EndWhenStoppedRightAfterTheStart) {
    for (std::uint64_t seed = 0; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        const int rounds = seed == 0 ? 20 : 1;
        Platform platform(seed == 0
                              ? kernel::Options{.mode = kernel::Mode::kFreeRunning, .speed = 50.0}
                              : kernel::Options{.seed = seed, .preempt = true});
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
                  rounds);
    }
}

TEST(PowerDetectorThreads, EndAtOnceWithoutAnObject) {
    Platform platform;
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerDetector_static(nullptr), 0U);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerCommonCtrl_static(nullptr), 0U);
    const std::string begin = "\tCPowerDetector::ThreadProc_Power";
    const std::string end =
        "_static, (NULL==pThis) fail!!!, Invalid Arguments!!!, ErrorCode(0), CPowerDetector.cpp(#)";
    EXPECT_EQ(ProgramLog(platform.board),
              (std::vector{begin + "Detector" + end, begin + "CommonCtrl" + end}));
}

}  // namespace
}  // namespace tests
