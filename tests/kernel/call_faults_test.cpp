#include "platform/kernel/call_faults.h"

#include <commctrl.h>
#include <objbase.h>
#include <pkfuncs.h>
#include <pm.h>

#include <atomic>
#include <map>

#include "platform/kernel/call_table.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

bool SetFails() {
    return SetEvent(nullptr) == FALSE && GetLastError() == 77;
}

TEST(CallFaults, ApplyOnlyToTheProgram) {
    Platform platform;
    ASSERT_EQ(kernel::AddCallFault({"SetEvent", 0, kernel::kForEver, 77}), "");
    EXPECT_FALSE(SetFails()) << "the host thread";
    const auto other_process = kernel::StartThread(
        [] { return DWORD{SetFails()}; }, THREAD_PRIORITY_NORMAL, kernel::kProgramProcess + 4);
    platform.Run([&] {
        const HANDLE other = kernel::OpenHandle(other_process);
        EXPECT_EQ(WaitForSingleObject(other, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(other_process->exit_code, 0U);
        CloseHandle(other);
        Crew([] { EXPECT_TRUE(SetFails()) << "another thread of the program"; });
    });
    EXPECT_EQ(kernel::CallCount("SetEvent"), 1U);
}

// Calls of a window procedure are calls of the program at any depth of the platform; calls of the
// platform itself (here DestroyWindow) are not.
PLATFORM_TEST(CallFaults, CountWhatTheProgramItselfCalls) {
    WNDCLASSW settings{};
    settings.lpszClassName = L"counted";
    settings.lpfnWndProc = [](HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_PAINT)
            InvalidateRect(window, nullptr, FALSE);
        return DefWindowProcW(window, message, wparam, lparam);
    };
    RegisterClassW(&settings);
    const HWND window = CreateWindowExW(0, L"counted", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9,
                                        nullptr, nullptr, nullptr, nullptr);
    UpdateWindow(window);
    SendMessageW(window, WM_CLOSE, 0, 0);
    using Counts = std::vector<std::pair<std::string_view, std::uint64_t>>;
    EXPECT_EQ(kernel::CallCounts(), (Counts{{"CreateWindowExW", 1},
                                            {"InvalidateRect", 1},
                                            {"RegisterClassW", 1},
                                            {"SendMessageW", 1},
                                            {"UpdateWindow", 1}}));
}

PLATFORM_TEST(CallFaults, CountDownAndAreClearedByName) {
    EXPECT_EQ(kernel::AddCallFault({.call = "Sleep"}), "Sleep cannot fail");
    EXPECT_EQ(kernel::AddCallFault({.call = "ReadFiles"}), "there is no call ReadFiles");
    EXPECT_NE(kernel::AddCallFault({.call = "ReadFile", .times = 0}), "");
    for (const kernel::CallFault& fault : {kernel::CallFault{"SetEvent", 2, 3, 77},
                                           {"SetEvent", 0, kernel::kForEver, 78},
                                           {"", 2, 1, 79}})
        ASSERT_EQ(kernel::AddCallFault(fault), "");
    CloseHandle(nullptr);
    for (const DWORD error : {78, 78, 77, 77})
        ExpectFails(error, [] { return SetEvent(nullptr); });
    const auto pending = kernel::PendingCallFaults();
    ASSERT_EQ(pending.size(), 2U);
    EXPECT_EQ(pending[0].skip, 0U);
    EXPECT_EQ(pending[0].times, 1U);
    EXPECT_EQ(pending[1].times, kernel::kForEver);
    EXPECT_EQ(kernel::ClearCallFaults(""), 1U) << "another fault came first";
    EXPECT_EQ(kernel::ClearCallFaults("SetEvent"), 2U);
    ExpectFails(ERROR_INVALID_HANDLE, [] { return SetEvent(nullptr); });
    EXPECT_EQ(kernel::FailedCalls().back().number_of_all, 5U);
}

// A program that retries at once does not stop the clock; one failure takes no time.
PLATFORM_TEST(CallFaults, LetTheClockAdvance) {
    ASSERT_EQ(kernel::AddCallFault({.call = "SetEvent", .times = kernel::kForEver}), "");
    const DWORD start = GetTickCount();
    SetEvent(nullptr);
    EXPECT_EQ(GetTickCount(), start);
    while (GetTickCount() - start < 1000)
        EXPECT_FALSE(SetEvent(nullptr));
    EXPECT_EQ(kernel::FailedCallCount(), 1001U);
    EXPECT_EQ(kernel::FailedCalls().size(), kernel::kFailedCallsKept);
}

// Makes a call whose arguments are all zero.
template <class Result, class... Arguments>
std::intptr_t CallWithZeros(Result (*call)(Arguments...)) {
    return (std::intptr_t)call(Arguments{}...);
}

constexpr DWORD kChosen = 424242;

// The documented failing values that are not zero.
const std::map<std::string, std::intptr_t> kFailedResults = {
    {"CoInitializeEx", E_OUTOFMEMORY},
    {"CreateFileW", -1},
    {"DialogBoxIndirectParamW", -1},
    {"GetMessageW", -1},
    {"MsgWaitForMultipleObjects", WAIT_FAILED},
    {"SetSystemPowerState", kChosen},
    {"SetTextColor", CLR_INVALID},
    {"StopPowerNotifications", kChosen},
    {"WaitForMultipleObjects", WAIT_FAILED},
    {"WaitForSingleObject", WAIT_FAILED},
};

// A call that reads its arguments first would return another value or leave another error.
void ExpectFailsByFault(const std::string& name, std::intptr_t (*call)()) {
    SCOPED_TRACE(name);
    const auto result = kFailedResults.find(name);
    EXPECT_EQ(kernel::AddCallFault({name, 0, 1, kChosen}), "");
    EXPECT_EQ(call(), result == kFailedResults.end() ? 0 : result->second);
    EXPECT_EQ(GetLastError(), kChosen);
    EXPECT_EQ(kernel::AddCallFault({.call = name}), "");
    call();
    EXPECT_TRUE(GetLastError() != ERROR_SUCCESS && GetLastError() != kChosen);
    EXPECT_EQ(kernel::CallCount(name), 2U);
    EXPECT_EQ(kernel::PendingCallFaults().size(), 0U);
}

PLATFORM_TEST(CallFaults, FailEveryCallAsDocumented) {
#define EXPECT_CALL_FAILS(call, error) \
    ExpectFailsByFault(#call, [] { return CallWithZeros(call); });
    PLATFORM_FAILABLE_CALLS(EXPECT_CALL_FAILS)
#undef EXPECT_CALL_FAILS
}

EVERY_MODE_SUITE(CallFaultsOfThreads);

// The number is exact for any interleaving of threads, also with a fault that is added meanwhile.
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
    // Far enough from now not to overlap with the first.
    ASSERT_EQ(kernel::AddCallFault({"SetEvent", 5000, 100, 77}), "");
    crew.Join();
    EXPECT_EQ(failures, kFaults);
    EXPECT_EQ(kernel::FailedCallCount(), kFaults);
    EXPECT_EQ(kernel::CallCount("SetEvent"), calls);
    EXPECT_EQ(kernel::PendingCallFaults().size(), 0U);
}

}  // namespace
}  // namespace tests
