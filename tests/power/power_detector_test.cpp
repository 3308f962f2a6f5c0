#include "power/CPowerDetector.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <pm.h>

#include <algorithm>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/kernel_state.h"
#include "platform/kernel/scheduler.h"
#include "platform/powermgr/power_notifications.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;
using platform::powermgr::Notify;

using Log = std::vector<std::string>;

const wchar_t* const kRequests[] = {L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerOFF_Request_"};
const wchar_t* const kMessages[] = {L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_",
                                    L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_",
                                    L"_KESTA_Technology,Inc._Sodrey_PowerOFF_Acknowledge_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_"};

// The broadcasts that an application of the unit hears: index of the message and parameters.
std::string g_heard;

LRESULT CALLBACK Listen(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    for (int index = 0; index < 4; ++index)
        if (message == RegisterWindowMessageW(kMessages[index]))
            g_heard += std::to_string(index) + "(" + std::to_string(wParam) + "," +
                       std::to_string(lParam) + ")";
    return DefWindowProcW(window, message, wParam, lParam);
}

// What has been broadcast since the last call, after the detector had time to.
std::string Hear() {
    Sleep(10);
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    return std::exchange(g_heard, "");
}

// A body on a thread that has a top-level window to listen with.
template <typename Body>
void RunOn(Platform& platform, Body body) {
    platform.Run(
        [&] {
            WNDCLASSW window_class{};
            window_class.lpfnWndProc = Listen;
            window_class.lpszClassName = L"Coordinator";
            RegisterClassW(&window_class);
            const HWND window = CreateWindowExW(0, L"Coordinator", L"", 0, 0, 0, 10, 10, nullptr,
                                                nullptr, nullptr, nullptr);
            body();
            DestroyWindow(window);
        },
        1s);
}

class PowerDetector : public testing::Test {
  protected:
    template <typename Body>
    void Run(Body body) {
        RunOn(platform_, body);
    }

    Platform platform_;
};

TEST_F(PowerDetector, AcknowledgesEveryRequestInOrder) {
    // Events that the coordinator made before are used as it made them; those that it opens later
    // are the same ones.
    for (const bool coordinator_first : {true, false}) {
        Run([coordinator_first] {
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
        });
    }
}

// One call of the program fails; what is said, and what still works.
TEST(PowerDetectorFailures, AreLoggedAndLeaveTheRestAlone) {
    constexpr DWORD kError = 1234;
    const struct {
        const char* call;
        std::uint64_t skip;
        BOOL ready;
        std::string where;    // of the one failure line; none when empty
        std::string heard;    // after a suspend request and a change of the supply
        std::size_t handles;  // left because they could not be closed
        DWORD error = kError;
    } rows[] = {
        {"CreateThread", 0, TRUE, "Init, CreateThread()", "3(1,1)", 0},
        {"CreateThread", 1, TRUE, "Init, CreateThread()", "0(0,0)", 0},
        // The request events, then the two that stop the threads.
        {"CreateEventW", 0, TRUE, "Init, CreateEvent()", "3(1,1)", 0},
        {"CreateEventW", 3, FALSE, "Init, CreateEvent()", "", 0},
        {"CreateEventW", 4, FALSE, "Init, CreateEvent()", "", 0},
        {"CreateMsgQueue", 0, FALSE, "Init, CreateMsgQueue()", "", 0},
        {"RequestPowerNotifications", 0, FALSE, "Init, RequestPowerNotifications()", "", 0},
        {"ReadMsgQueue", 0, TRUE, "ThreadProc_PowerDetector, ReadMsgQueue()", "0(0,0)3(1,1)", 0},
        {"ReadMsgQueue", 0, TRUE, "", "0(0,0)3(1,1)", 0, ERROR_TIMEOUT},
        {"StopPowerNotifications", 0, TRUE, "DeInit, StopPowerNotifications()", "0(0,0)3(1,1)", 2},
        {"CloseMsgQueue", 0, TRUE, "DeInit, CloseMsgQueue()", "0(0,0)3(1,1)", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.skip));
        Platform platform;
        platform.AllowHandles(row.handles);
        ASSERT_EQ(kernel::AddCallFault({.call = row.call, .skip = row.skip, .error = row.error}),
                  "");
        RunOn(platform, [&] {
            CPowerDetector detector;
            EXPECT_EQ(detector.Init(), row.ready);
            const HANDLE suspend = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[0]);
            if (suspend != nullptr)
                SetEvent(suspend);
            Sleep(1);
            Notify(PBT_POWERSTATUSCHANGE);
            EXPECT_EQ(Hear(), row.heard);
            CloseHandle(suspend);
        });
        Log failures = ProgramLog(platform.board);
        std::erase_if(failures,
                      [](const std::string& line) { return line.find("fail!!!") == line.npos; });
        Log expected;
        if (!row.where.empty())
            expected.push_back("\tCPowerDetector::" + row.where + " fail!!!, ErrorCode(1234), ");
        ASSERT_EQ(failures.size(), expected.size());
        if (!expected.empty()) {
            EXPECT_TRUE(failures[0].starts_with(expected[0])) << failures[0];
        }
    }
}

TEST_F(PowerDetector, BroadcastsAChangeOfTheSupply) {
    Run([&] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        platform_.board.supply = {.ac_line_status = 0, .battery_flag = 2};
        Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Hear(), "3(0,2)");
        platform_.board.supply = {.ac_line_status = 255, .battery_flag = 128};
        for (const DWORD event : {PBT_RESUME, PBT_POWERSTATUSCHANGE, PBT_POWERSTATUSCHANGE})
            Notify(event);
        EXPECT_EQ(Hear(), "3(255,128)3(255,128)");
        platform_.board.supply_readable = false;
        platform_.board.ClearOutput();
        Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Hear(), "");
        const Log log = ProgramLog(platform_.board);
        ASSERT_EQ(log.size(), 1U);
        EXPECT_TRUE(
            log[0].starts_with("\tCPowerDetector::ThreadProc_PowerDetector, "
                               "GetSystemPowerStatusEx2() fail!!!, ErrorCode("))
            << log[0];
        platform_.board.supply_readable = true;
        Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Hear(), "3(255,128)");
    });
}

TEST_F(PowerDetector, StopReleasesEverythingAndASecondOneNothing) {
    Run([&] {
        const std::size_t handles = kernel::HandleCount();
        const std::size_t threads = kernel::ThreadCount();
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        Sleep(10);
        EXPECT_EQ(kernel::ThreadCount(), threads + 2);
        for (int count = 0; count < 3; ++count)
            Notify(PBT_POWERSTATUSCHANGE);
        detector.DeInit();
        EXPECT_EQ(kernel::ThreadCount(), threads);
        EXPECT_EQ(kernel::HandleCount(), handles);
        platform_.board.ClearOutput();
    });
    // The destructor's.
    EXPECT_EQ(ProgramLog(platform_.board),
              (Log{"+++CPowerDetector::DeInit", "---CPowerDetector::DeInit"}));
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

// Something else has the name of what Init() wants to make.
TEST_F(PowerDetector, DoesWithoutARequestEventButNotWithoutItsQueue) {
    const struct {
        const wchar_t* taken;
        BOOL ready;
        std::string failure;
        std::string heard;
    } rows[] = {
        {kRequests[1], TRUE, "CreateEvent", "0(0,0)2(0,0)"},
        {L"_KESTA_Technology_Inc_Lumarin_PowerNotify", FALSE, "CreateMsgQueue", ""},
    };
    for (const auto& row : rows) {
        platform_.board.ClearOutput();
        Run([&] {
            const HANDLE mutex = CreateMutexW(nullptr, FALSE, row.taken);
            const HANDLE others[] = {CreateEventW(nullptr, FALSE, FALSE, kRequests[0]),
                                     CreateEventW(nullptr, FALSE, FALSE, kRequests[2])};
            const std::size_t handles = kernel::HandleCount();
            const std::size_t threads = kernel::ThreadCount();
            CPowerDetector detector;
            EXPECT_EQ(detector.Init(), row.ready);
            if (!row.ready) {
                EXPECT_EQ(kernel::HandleCount(), handles);
                EXPECT_EQ(kernel::ThreadCount(), threads);
            }
            for (const HANDLE event : others) {
                SetEvent(event);
                CloseHandle(event);
            }
            EXPECT_EQ(Hear(), row.heard);
            CloseHandle(mutex);
        });
        EXPECT_EQ(std::ranges::count(ProgramLog(platform_.board),
                                     "\tCPowerDetector::Init, " + row.failure +
                                         "() fail!!!, ErrorCode(6), CPowerDetector.cpp(#)"),
                  1);
    }
}

TEST_F(PowerDetector, ThreadsWithoutAnObjectEndAtOnce) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerDetector_static(nullptr), 0U);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerCommonCtrl_static(nullptr), 0U);
    const std::string rest =
        ", (NULL==pThis) fail!!!, Invalid Arguments!!!, ErrorCode(0), PowerThreads.cpp(#)";
    EXPECT_EQ(ProgramLog(platform_.board),
              (Log{"\tCPowerDetector::ThreadProc_PowerDetector_static" + rest,
                   "\tCPowerDetector::ThreadProc_PowerCommonCtrl_static" + rest}));
}

// A handle is closed behind the detector's back. A thread that waited again at once would never
// come to rest.
TEST_F(PowerDetector, ThreadEndsWhenItsWaitFails) {
    Run([&] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        Sleep(10);
        const std::size_t threads = kernel::ThreadCount();
        const HANDLE own = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[1]);
        const std::shared_ptr<kernel::Object> event = kernel::FindObject(own);
        std::uintptr_t detectors = 0;
        {
            const kernel::KernelLock lock = kernel::LockKernel();
            kernel::State().handles.ForEach([&](std::uintptr_t value, const auto& object) {
                if (object == event && value != reinterpret_cast<std::uintptr_t>(own))
                    detectors = value;
            });
        }
        EXPECT_TRUE(CloseHandle(reinterpret_cast<HANDLE>(detectors)));
        SetEvent(own);  // wakes the thread to its next wait
        CloseHandle(own);
        EXPECT_EQ(Hear(), "1(0,0)");
        EXPECT_EQ(kernel::ThreadCount(), threads - 1);
    });
}

}  // namespace
}  // namespace tests
