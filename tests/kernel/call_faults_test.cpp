#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

namespace {

namespace kernel = platform::kernel;
using tests::Platform;

bool SetFails() {
    return SetEvent(nullptr) == FALSE && GetLastError() == 77;
}

DWORD WINAPI CallOnce(LPVOID) {
    return SetFails() ? 1 : 0;
}

TEST(CallFaults, StrikeNobodyButTheProgram) {
    Platform platform;
    ASSERT_EQ(kernel::AddCallFault({"SetEvent", 0, kernel::kForEver, 77}), "");
    EXPECT_FALSE(SetFails()) << "the hardware's thread";
    const HANDLE other = kernel::OpenHandle(kernel::StartThread(
        [] { return CallOnce(nullptr); }, THREAD_PRIORITY_NORMAL, kernel::kProgramProcess + 4));
    HANDLE own = nullptr;
    platform.Run([&] {
        own = CreateThread(nullptr, 0, CallOnce, nullptr, 0, nullptr);
        WaitForSingleObject(own, INFINITE);
        WaitForSingleObject(other, INFINITE);
    });
    DWORD failed = 9;
    EXPECT_TRUE(GetExitCodeThread(other, &failed) && failed == 0) << "another application";
    EXPECT_TRUE(GetExitCodeThread(own, &failed) && failed == 1) << "a thread that it started";
    EXPECT_EQ(kernel::CallCount("SetEvent"), 1U);
    CloseHandle(own);
    CloseHandle(other);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_PAINT)
        ValidateRect(window, nullptr);
    return DefWindowProcW(window, message, wparam, lparam);
}

// What a window procedure calls is the program's call, however deep in the platform it is called;
// what the platform calls by itself (here DestroyWindow) is not.
TEST(CallFaults, CountWhatTheProgramItselfCalls) {
    Platform platform;
    platform.Run([] {
        WNDCLASSW settings{};
        settings.lpfnWndProc = Procedure;
        settings.lpszClassName = L"counted";
        RegisterClassW(&settings);
        const HWND window = CreateWindowExW(0, L"counted", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9,
                                            nullptr, nullptr, nullptr, nullptr);
        UpdateWindow(window);
        SendMessageW(window, WM_CLOSE, 0, 0);
    });
    using Counts = std::vector<std::pair<std::string_view, std::uint64_t>>;
    EXPECT_EQ(kernel::CallCounts(), (Counts{{"CreateWindowExW", 1},
                                            {"RegisterClassW", 1},
                                            {"SendMessageW", 1},
                                            {"UpdateWindow", 1},
                                            {"ValidateRect", 1}}));
}

TEST(CallFaults, CountDownAndAreClearedByName) {
    Platform platform;
    EXPECT_EQ(kernel::AddCallFault({.call = "Sleep"}), "Sleep cannot fail");
    EXPECT_EQ(kernel::AddCallFault({.call = "ReadFiles"}), "there is no call ReadFiles");
    EXPECT_NE(kernel::AddCallFault({.call = "ReadFile", .times = 0}), "");
    for (const kernel::CallFault& fault : {kernel::CallFault{"SetEvent", 2, 3, 77},
                                           {"SetEvent", 0, kernel::kForEver, 78},
                                           {"", 2, 1, 79}})
        ASSERT_EQ(kernel::AddCallFault(fault), "");
    std::vector<DWORD> errors;
    platform.Run([&] {
        ResetEvent(nullptr);
        for (int i = 0; i < 4; ++i) {
            SetEvent(nullptr);
            errors.push_back(GetLastError());
        }
        const auto pending = kernel::PendingCallFaults();
        ASSERT_EQ(pending.size(), 2U);
        EXPECT_EQ(pending[0].skip, 0U);
        EXPECT_EQ(pending[0].times, 1U);
        EXPECT_EQ(pending[1].times, kernel::kForEver);
        EXPECT_EQ(kernel::ClearCallFaults(""), 1U) << "the one that another went before";
        EXPECT_EQ(kernel::ClearCallFaults("SetEvent"), 2U);
        SetEvent(nullptr);
        errors.push_back(GetLastError());
    });
    EXPECT_EQ(errors, (std::vector<DWORD>{78, 78, 77, 77, ERROR_INVALID_HANDLE}));
    EXPECT_EQ(kernel::FailedCalls().back().number_of_all, 5U);
}

// A program that tries again at once does not stop the clock, and one failure takes no time.
TEST(CallFaults, LetTheClockGetOn) {
    Platform platform;
    ASSERT_EQ(kernel::AddCallFault({.call = "ReadFile", .times = kernel::kForEver}), "");
    platform.Run([] {
        const DWORD start = GetTickCount();
        ReadFile(nullptr, nullptr, 0, nullptr, nullptr);
        EXPECT_EQ(GetTickCount(), start);
        while (GetTickCount() - start < 1000)
            EXPECT_FALSE(ReadFile(nullptr, nullptr, 0, nullptr, nullptr));
    });
    EXPECT_EQ(kernel::FailedCallCount(), 1001U);
    EXPECT_EQ(kernel::FailedCalls().size(), kernel::kFailedCallsKept);
}

class CallFaultsOfThreads : public tests::InEveryMode {};

// Exactly so many, however the threads meet, a fault that comes meanwhile included.
TEST_P(CallFaultsOfThreads, AreExact) {
    constexpr std::uint64_t kFaults = 400;
    Platform platform{GetParam().options};
    ASSERT_EQ(kernel::AddCallFault({"SetEvent", 700, 300, 77}), "");
    std::atomic<std::uint64_t> failures = 0;
    std::atomic<std::uint64_t> calls = 0;
    platform.Run([&] {
        tests::Crew crew;
        for (int i = 0; i < 4; ++i)
            crew.Start([&] {
                while (failures < kFaults && calls < 1000000) {
                    ++calls;
                    failures += SetFails() ? 1 : 0;
                }
            });
        Sleep(1);
        // So far from now that it does not meet the other one.
        ASSERT_EQ(kernel::AddCallFault({"SetEvent", 5000, 100, 77}), "");
        crew.Join();
    });
    EXPECT_EQ(failures, kFaults);
    EXPECT_EQ(kernel::FailedCallCount(), kFaults);
    EXPECT_EQ(kernel::CallCount("SetEvent"), calls);
    EXPECT_EQ(kernel::PendingCallFaults().size(), 0U);
}

INSTANTIATE_IN_EVERY_MODE(CallFaultsOfThreads);

}  // namespace
