#include "platform/kernel/call_faults.h"

#include <atomic>

#include "tests/support/platform_test.h"

namespace tests {
namespace {

bool SetFails() {
    return SetEvent(nullptr) == FALSE && GetLastError() == 77;
}

TEST(CallFaults, StrikeNobodyButTheProgram) {
    Platform platform;
    ASSERT_EQ(kernel::AddCallFault({"SetEvent", 0, kernel::kForEver, 77}), "");
    EXPECT_FALSE(SetFails()) << "the hardware's thread";
    DWORD code = 9;
    const auto expect_failures = [&](HANDLE thread, DWORD failures) {
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(GetExitCodeThread(thread, &code) && code == failures);
        CloseHandle(thread);
    };
    constexpr auto kOnce = [](LPVOID) -> DWORD { return SetFails() ? 1 : 0; };
    const auto neighbour = kernel::StartThread([&] { return kOnce(nullptr); },
                                               THREAD_PRIORITY_NORMAL, kernel::kProgramProcess + 4);
    platform.Run([&] {
        expect_failures(CreateThread(nullptr, 0, kOnce, nullptr, 0, nullptr), 1);
        expect_failures(kernel::OpenHandle(neighbour), 0);
    });
    EXPECT_EQ(kernel::CallCount("SetEvent"), 1U);
}

// What a window procedure calls is the program's call, however deep in the platform it is called;
// what the platform calls by itself (here DestroyWindow) is not.
PLATFORM_TEST(CallFaults, CountWhatTheProgramItselfCalls) {
    WNDCLASSW settings{};
    settings.lpszClassName = L"counted";
    settings.lpfnWndProc = [](HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_PAINT)
            ValidateRect(window, nullptr);
        return DefWindowProcW(window, message, wparam, lparam);
    };
    RegisterClassW(&settings);
    const HWND window = CreateWindowExW(0, L"counted", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9,
                                        nullptr, nullptr, nullptr, nullptr);
    UpdateWindow(window);
    SendMessageW(window, WM_CLOSE, 0, 0);
    using Counts = std::vector<std::pair<std::string_view, std::uint64_t>>;
    EXPECT_EQ(kernel::CallCounts(), (Counts{{"CreateWindowExW", 1},
                                            {"RegisterClassW", 1},
                                            {"SendMessageW", 1},
                                            {"UpdateWindow", 1},
                                            {"ValidateRect", 1}}));
}

PLATFORM_TEST(CallFaults, CountDownAndAreClearedByName) {
    EXPECT_EQ(kernel::AddCallFault({.call = "Sleep"}), "Sleep cannot fail");
    EXPECT_EQ(kernel::AddCallFault({.call = "ReadFiles"}), "there is no call ReadFiles");
    EXPECT_NE(kernel::AddCallFault({.call = "ReadFile", .times = 0}), "");
    for (const kernel::CallFault& fault : {kernel::CallFault{"SetEvent", 2, 3, 77},
                                           {"SetEvent", 0, kernel::kForEver, 78},
                                           {"", 2, 1, 79}})
        ASSERT_EQ(kernel::AddCallFault(fault), "");
    ResetEvent(nullptr);
    for (const DWORD error : {78, 78, 77, 77})
        ExpectFails(error, [] { return SetEvent(nullptr); });
    const auto pending = kernel::PendingCallFaults();
    ASSERT_EQ(pending.size(), 2U);
    EXPECT_EQ(pending[0].skip, 0U);
    EXPECT_EQ(pending[0].times, 1U);
    EXPECT_EQ(pending[1].times, kernel::kForEver);
    EXPECT_EQ(kernel::ClearCallFaults(""), 1U) << "the one that another went before";
    EXPECT_EQ(kernel::ClearCallFaults("SetEvent"), 2U);
    ExpectFails(ERROR_INVALID_HANDLE, [] { return SetEvent(nullptr); });
    EXPECT_EQ(kernel::FailedCalls().back().number_of_all, 5U);
}

// A program that tries again at once does not stop the clock, and one failure takes no time.
PLATFORM_TEST(CallFaults, LetTheClockGetOn) {
    ASSERT_EQ(kernel::AddCallFault({.call = "SetEvent", .times = kernel::kForEver}), "");
    const DWORD start = GetTickCount();
    SetEvent(nullptr);
    EXPECT_EQ(GetTickCount(), start);
    while (GetTickCount() - start < 1000)
        EXPECT_FALSE(SetEvent(nullptr));
    EXPECT_EQ(kernel::FailedCallCount(), 1001U);
    EXPECT_EQ(kernel::FailedCalls().size(), kernel::kFailedCallsKept);
}

EVERY_MODE_SUITE(CallFaultsOfThreads);

// Exactly so many, however the threads meet, a fault that comes meanwhile included.
EVERY_MODE_TEST(CallFaultsOfThreads, AreExact) {
    constexpr std::uint64_t kFaults = 400;
    ASSERT_EQ(kernel::AddCallFault({"SetEvent", 700, 300, 77}), "");
    std::atomic<std::uint64_t> failures = 0;
    std::atomic<std::uint64_t> calls = 0;
    Crew crew;
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
    EXPECT_EQ(failures, kFaults);
    EXPECT_EQ(kernel::FailedCallCount(), kFaults);
    EXPECT_EQ(kernel::CallCount("SetEvent"), calls);
    EXPECT_EQ(kernel::PendingCallFaults().size(), 0U);
}

}  // namespace
}  // namespace tests
