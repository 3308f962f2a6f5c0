#include "power/CPowerDetector.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <msgqueue.h>
#include <pm.h>

#include <algorithm>

#include "platform/kernel/kernel_state.h"
#include "platform/kernel/scheduler.h"
#include "platform/powermgr/power_notifications.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/program_log.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;

using Log = std::vector<std::string>;

const wchar_t* const kRequests[] = {L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerOFF_Request_"};
const wchar_t* const kMessages[] = {L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_",
                                    L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_",
                                    L"_KESTA_Technology,Inc._Sodrey_PowerOFF_Acknowledge_",
                                    L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_"};
const wchar_t kQueue[] = L"_KESTA_Technology_Inc_Lumarin_PowerNotify";

// A broadcast as an application of the unit hears it; `message` is an index of kMessages.
struct Heard {
    int message;
    WPARAM wParam;
    LPARAM lParam;

    bool operator==(const Heard&) const = default;
};

void PrintTo(const Heard& heard, std::ostream* out) {
    *out << heard.message << "(" << heard.wParam << ", " << heard.lParam << ")";
}

std::vector<Heard> g_heard;

LRESULT CALLBACK Listen(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    for (int index = 0; index < 4; ++index)
        if (message == RegisterWindowMessageW(kMessages[index]))
            g_heard.push_back({index, wParam, lParam});
    return DefWindowProcW(window, message, wParam, lParam);
}

// An application of the unit: a top-level window, and the request events by name.
class Coordinator {
  public:
    Coordinator() {
        g_heard.clear();
        WNDCLASSW window_class{};
        window_class.lpfnWndProc = Listen;
        window_class.lpszClassName = L"Coordinator";
        RegisterClassW(&window_class);
        window_ = CreateWindowExW(0, L"Coordinator", L"", 0, 0, 0, 10, 10, nullptr, nullptr,
                                  nullptr, nullptr);
    }
    Coordinator(const Coordinator&) = delete;
    Coordinator& operator=(const Coordinator&) = delete;
    ~Coordinator() { DestroyWindow(window_); }

    static void Raise(int request) {
        const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, kRequests[request]);
        ASSERT_NE(event, nullptr) << "request " << request;
        SetEvent(event);
        CloseHandle(event);
    }

    // What has been broadcast since the last call, after the detector had time to.
    static std::vector<Heard> Hear() {
        Sleep(10);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        return std::exchange(g_heard, {});
    }

  private:
    HWND window_;
};

TEST(PowerDetector, AnswersEveryRequest) {
    Platform platform;
    platform.Run([] {
        Coordinator coordinator;
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        for (int request = 0; request < 3; ++request) {
            Coordinator::Raise(request);
            EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{request, 0, 0}}));
        }
        EXPECT_EQ(Coordinator::Hear(), std::vector<Heard>{}) << "the events reset themselves";
    });
}

TEST(PowerDetector, AnswersRequestsOfOneMomentInOrder) {
    Platform platform;
    platform.Run([] {
        Coordinator coordinator;
        // The coordinator was there first: its events are used as it made them.
        HANDLE events[3];
        for (int request = 0; request < 3; ++request)
            events[request] = CreateEventW(nullptr, FALSE, TRUE, kRequests[request]);
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
        for (const HANDLE event : events)
            CloseHandle(event);
    });
}

TEST(PowerDetector, BroadcastsAChangeOfTheSupply) {
    Platform platform;
    platform.Run([&] {
        Coordinator coordinator;
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        platform.board.supply = {.ac_line_status = 0, .battery_flag = 2};
        platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{3, 0, 2}}));
        platform.board.supply = {.ac_line_status = 255, .battery_flag = 128};
        platform::powermgr::Notify(PBT_RESUME);
        platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
        platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{3, 255, 128}, {3, 255, 128}}));
        platform::powermgr::Notify(PBT_RESUME);
        EXPECT_EQ(Coordinator::Hear(), std::vector<Heard>{});
    });
}

TEST(PowerDetector, UnreadableSupplyIsLogged) {
    Platform platform;
    platform.Run([&] {
        Coordinator coordinator;
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        Sleep(10);
        platform.board.ClearOutput();
        platform.board.supply_readable = false;
        platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Coordinator::Hear(), std::vector<Heard>{});
        const Log log = ProgramLog(platform.board);
        ASSERT_EQ(log.size(), 1U);
        EXPECT_TRUE(
            log[0].starts_with("\tCPowerDetector::ThreadProc_PowerDetector, "
                               "GetSystemPowerStatusEx2() fail!!!, ErrorCode("))
            << log[0];
        platform.board.supply_readable = true;
        platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
        EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{3, 1, 1}}));
    });
}

TEST(PowerDetector, StopReleasesEverythingAndASecondOneNothing) {
    Platform platform;
    platform.Run([&] {
        const std::size_t handles = kernel::HandleCount();
        const std::size_t threads = kernel::ThreadCount();
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        Sleep(10);
        EXPECT_EQ(kernel::ThreadCount(), threads + 2);
        detector.DeInit();
        EXPECT_EQ(kernel::ThreadCount(), threads);
        EXPECT_EQ(kernel::HandleCount(), handles);
        platform.board.ClearOutput();
        detector.DeInit();
    });
    // The second stop and the destructor's.
    EXPECT_EQ(ProgramLog(platform.board),
              (Log{"+++CPowerDetector::DeInit", "---CPowerDetector::DeInit",
                   "+++CPowerDetector::DeInit", "---CPowerDetector::DeInit"}));
}

// The processor changes hands between any two calls, so some stops come before a thread's first.
TEST(PowerDetector, StopRightAfterTheStartWins) {
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        Platform platform({.seed = seed, .preempt = true});
        platform.Run([] {
            CPowerDetector detector;
            EXPECT_TRUE(detector.Init());
        });
        const Log log = ProgramLog(platform.board);
        EXPECT_EQ(
            std::count(log.begin(), log.end(), "---CPowerDetector::ThreadProc_PowerCommonCtrl"), 1)
            << "seed " << seed;
    }
}

// Real threads in parallel, for the sanitizers' eyes.
TEST(PowerDetector, StartsAndStopsInParallel) {
    Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = 50.0});
    platform.Run([&] {
        for (int round = 0; round < 20; ++round) {
            CPowerDetector detector;
            EXPECT_TRUE(detector.Init());
            platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
            Sleep(static_cast<DWORD>(round));
        }
    });
    const Log log = ProgramLog(platform.board);
    EXPECT_EQ(std::count(log.begin(), log.end(), "---CPowerDetector::ThreadProc_PowerCommonCtrl"),
              20);
}

TEST(PowerDetector, StopsUnderAFloodOfNotifications) {
    Platform platform;
    platform.Run([] {
        CPowerDetector detector;
        ASSERT_TRUE(detector.Init());
        for (int count = 0; count < 3; ++count)
            platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
        const kernel::Time before = kernel::Now();
        detector.DeInit();
        EXPECT_LE(kernel::Now() - before, 1s);
    });
}

TEST(PowerDetector, MissingRequestEventCostsOnlyItsOwnAnswer) {
    Platform platform;
    platform.Run([&] {
        Coordinator coordinator;
        // Something else has the name.
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kRequests[1]);
        {
            CPowerDetector detector;
            EXPECT_TRUE(detector.Init());
            Coordinator::Raise(2);
            Coordinator::Raise(0);
            EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{0, 0, 0}, {2, 0, 0}}));
        }
        CloseHandle(mutex);
    });
    const Log log = ProgramLog(platform.board);
    EXPECT_EQ(std::count(log.begin(), log.end(),
                         "\tCPowerDetector::Init, CreateEvent() fail!!!, ErrorCode(6), "
                         "CPowerDetector.cpp(#)"),
              1);
}

TEST(PowerDetector, WithoutItsQueueReleasesWhatItHad) {
    Platform platform;
    platform.Run([&] {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kQueue);
        const std::size_t handles = kernel::HandleCount();
        const std::size_t threads = kernel::ThreadCount();
        CPowerDetector detector;
        EXPECT_FALSE(detector.Init());
        EXPECT_EQ(kernel::HandleCount(), handles);
        EXPECT_EQ(kernel::ThreadCount(), threads);
        CloseHandle(mutex);
    });
    const Log log = ProgramLog(platform.board);
    const auto failure = std::find_if(log.begin(), log.end(), [](const std::string& line) {
        return line.starts_with(
            "\tCPowerDetector::Init, CreateMsgQueue() fail!!!, ErrorCode(6), "
            "CPowerDetector.cpp(#)");
    });
    EXPECT_NE(failure, log.end());
}

TEST(PowerDetector, ThreadsWithoutAnObjectEndAtOnce) {
    Platform platform;
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerDetector_static(nullptr), 0U);
    EXPECT_EQ(CPowerDetector::ThreadProc_PowerCommonCtrl_static(nullptr), 0U);
    const std::string rest =
        ", (NULL==pThis) fail!!!, Invalid Arguments!!!, ErrorCode(0), PowerThreads.cpp(#)";
    EXPECT_EQ(ProgramLog(platform.board),
              (Log{"\tCPowerDetector::ThreadProc_PowerDetector_static" + rest,
                   "\tCPowerDetector::ThreadProc_PowerCommonCtrl_static" + rest}));
}

// Closes the detector's handle of a named event behind its back.
void CloseDetectorsHandle(const wchar_t* name) {
    const HANDLE own = OpenEventW(EVENT_ALL_ACCESS, FALSE, name);
    const std::shared_ptr<kernel::Object> event = kernel::FindObject(own);
    std::uintptr_t others = 0;
    {
        const kernel::KernelLock lock = kernel::LockKernel();
        kernel::State().handles.ForEach([&](std::uintptr_t value, const auto& object) {
            if (object == event && value != reinterpret_cast<std::uintptr_t>(own))
                others = value;
        });
    }
    EXPECT_TRUE(CloseHandle(reinterpret_cast<HANDLE>(others)));
    CloseHandle(own);
}

// A thread that waited again at once would never come to rest.
TEST(PowerDetector, ThreadEndsWhenItsWaitFails) {
    Platform platform;
    platform.Run(
        [&] {
            Coordinator coordinator;
            const HANDLE suspend = CreateEventW(nullptr, FALSE, FALSE, kRequests[0]);
            CPowerDetector detector;
            ASSERT_TRUE(detector.Init());
            Sleep(10);
            const std::size_t threads = kernel::ThreadCount();
            CloseDetectorsHandle(kRequests[1]);
            SetEvent(suspend);
            EXPECT_EQ(Coordinator::Hear(), (std::vector<Heard>{{0, 0, 0}}));
            EXPECT_EQ(kernel::ThreadCount(), threads - 1);
            CloseHandle(suspend);
        },
        1s);
}

TEST(PowerDetector, ThreadsWithNothingToWaitForEnd) {
    Platform platform;
    platform.Run(
        [] {
            CPowerDetector detector;
            EXPECT_EQ(detector.ThreadProc_PowerDetector(), 0U);
            EXPECT_EQ(detector.ThreadProc_PowerCommonCtrl(), 0U);
        },
        1s);
}

}  // namespace
}  // namespace tests
