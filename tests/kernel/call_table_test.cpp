#include <commctrl.h>
#include <msgqueue.h>
#include <objbase.h>
#include <pkfuncs.h>
#include <pm.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>

#include "platform/kernel/call_faults.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;

// Names of an event and a mutex that are there, and handles of nothing.
constexpr wchar_t kEventName[] = L"an event";
constexpr wchar_t kMutexName[] = L"a mutex";
const HWND kWindowOfNobody = reinterpret_cast<HWND>(std::uintptr_t{0xABC8});
const HDC kDcOfNobody = reinterpret_cast<HDC>(std::uintptr_t{0xABC8});

struct FailingCall {
    std::string_view name;
    // Makes a call that mostly fails anyway, and returns whether its result says so as the API
    // documents it.
    bool (*failed)();
};

const FailingCall kFailingCalls[] = {
    {"BeginPaint", [] { return BeginPaint(nullptr, nullptr) == nullptr; }},
    {"BitBlt", [] { return BitBlt(nullptr, 0, 0, 1, 1, nullptr, 0, 0, SRCCOPY) == FALSE; }},
    {"ClientToScreen", [] { return ClientToScreen(nullptr, nullptr) == FALSE; }},
    {"CloseHandle", [] { return CloseHandle(nullptr) == FALSE; }},
    {"CloseMsgQueue", [] { return CloseMsgQueue(nullptr) == FALSE; }},
    {"CoInitializeEx", [] { return CoInitializeEx(kWindowOfNobody, 0) < 0; }},
    {"CreateBitmap", [] { return CreateBitmap(0, 0, 1, 32, nullptr) == nullptr; }},
    {"CreateCompatibleBitmap", [] { return CreateCompatibleBitmap(nullptr, 1, 1) == nullptr; }},
    {"CreateCompatibleDC", [] { return CreateCompatibleDC(kDcOfNobody) == nullptr; }},
    {"CreateDialogIndirectParamW",
     [] { return CreateDialogIndirectParamW(nullptr, nullptr, nullptr, nullptr, 0) == nullptr; }},
    {"CreateEventW", [] { return CreateEventW(nullptr, FALSE, FALSE, kMutexName) == nullptr; }},
    {"CreateFileW",
     [] { return CreateFileW(nullptr, 0, 0, nullptr, 0, 0, nullptr) == INVALID_HANDLE_VALUE; }},
    {"CreateFontIndirectW", [] { return CreateFontIndirectW(nullptr) == nullptr; }},
    {"CreateMsgQueue", [] { return CreateMsgQueue(nullptr, nullptr) == nullptr; }},
    {"CreateMutexW", [] { return CreateMutexW(nullptr, FALSE, kEventName) == nullptr; }},
    {"CreateSolidBrush",
     [] {
         const HBRUSH brush = CreateSolidBrush(0);
         return brush == nullptr || !DeleteObject(brush);
     }},
    {"CreateThread",
     [] { return CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr) == nullptr; }},
    {"CreateWindowExW",
     [] {
         return CreateWindowExW(0, nullptr, nullptr, 0, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                                nullptr) == nullptr;
     }},
    {"DeleteDC", [] { return DeleteDC(nullptr) == FALSE; }},
    {"DeleteObject", [] { return DeleteObject(nullptr) == FALSE; }},
    {"DestroyIcon", [] { return DestroyIcon(nullptr) == FALSE; }},
    {"DestroyWindow", [] { return DestroyWindow(nullptr) == FALSE; }},
    {"DeviceIoControl",
     [] { return DeviceIoControl(nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr) == FALSE; }},
    {"DialogBoxIndirectParamW",
     [] { return DialogBoxIndirectParamW(nullptr, nullptr, nullptr, nullptr, 0) == -1; }},
    {"DrawTextW", [] { return DrawTextW(nullptr, L"", 0, nullptr, 0) == 0; }},
    {"EnableWindow", [] { return EnableWindow(nullptr, TRUE) == FALSE; }},
    {"EndDialog", [] { return EndDialog(nullptr, 0) == FALSE; }},
    {"EndPaint", [] { return EndPaint(nullptr, nullptr) == FALSE; }},
    {"FillRect", [] { return FillRect(nullptr, nullptr, nullptr) == 0; }},
    {"FindResourceW", [] { return FindResourceW(nullptr, nullptr, nullptr) == nullptr; }},
    {"FindWindowW", [] { return FindWindowW(L"none", nullptr) == nullptr; }},
    {"GetBkColor", [] { return GetBkColor(nullptr) == CLR_INVALID; }},
    {"GetBkMode", [] { return GetBkMode(nullptr) == 0; }},
    {"GetClassInfoW", [] { return GetClassInfoW(nullptr, nullptr, nullptr) == FALSE; }},
    {"GetClassNameW", [] { return GetClassNameW(nullptr, nullptr, 0) == 0; }},
    {"GetClientRect", [] { return GetClientRect(nullptr, nullptr) == FALSE; }},
    {"GetCommMask", [] { return GetCommMask(nullptr, nullptr) == FALSE; }},
    {"GetCommState", [] { return GetCommState(nullptr, nullptr) == FALSE; }},
    {"GetCommTimeouts", [] { return GetCommTimeouts(nullptr, nullptr) == FALSE; }},
    {"GetCurrentObject", [] { return GetCurrentObject(nullptr, OBJ_FONT) == nullptr; }},
    {"GetDC", [] { return GetDC(nullptr) == nullptr; }},
    {"GetDeviceCaps", [] { return GetDeviceCaps(nullptr, HORZRES) == 0; }},
    {"GetExitCodeThread", [] { return GetExitCodeThread(nullptr, nullptr) == FALSE; }},
    {"GetFileVersionInfoSizeW", [] { return GetFileVersionInfoSizeW(nullptr, nullptr) == 0; }},
    {"GetFileVersionInfoW", [] { return GetFileVersionInfoW(nullptr, 0, 0, nullptr) == FALSE; }},
    {"GetMessageW", [] { return GetMessageW(nullptr, nullptr, 0, 0) == -1; }},
    {"GetModuleFileNameW", [] { return GetModuleFileNameW(nullptr, nullptr, 0) == 0; }},
    {"GetModuleHandleW", [] { return GetModuleHandleW(L"none") == nullptr; }},
    {"GetMsgQueueInfo", [] { return GetMsgQueueInfo(nullptr, nullptr) == FALSE; }},
    {"GetObjectType", [] { return GetObjectType(nullptr) == 0; }},
    {"GetObjectW", [] { return GetObjectW(nullptr, 0, nullptr) == 0; }},
    {"GetParent", [] { return GetParent(nullptr) == nullptr; }},
    {"GetPixel", [] { return GetPixel(nullptr, 0, 0) == CLR_INVALID; }},
    {"GetStockObject", [] { return GetStockObject(-1) == nullptr; }},
    {"GetSysColorBrush", [] { return GetSysColorBrush(-1) == nullptr; }},
    {"GetSystemMetrics", [] { return GetSystemMetrics(-1) == 0; }},
    {"GetSystemPowerStatusEx2", [] { return GetSystemPowerStatusEx2(nullptr, 0, TRUE) == 0; }},
    {"GetTextColor", [] { return GetTextColor(nullptr) == CLR_INVALID; }},
    {"GetTextExtentPoint32W",
     [] { return GetTextExtentPoint32W(nullptr, L"", 0, nullptr) == FALSE; }},
    {"GetTextMetricsW", [] { return GetTextMetricsW(nullptr, nullptr) == FALSE; }},
    {"GetThreadPriority",
     [] { return GetThreadPriority(nullptr) == THREAD_PRIORITY_ERROR_RETURN; }},
    {"GetUpdateRect", [] { return GetUpdateRect(nullptr, nullptr, FALSE) == FALSE; }},
    {"GetWindow", [] { return GetWindow(nullptr, GW_OWNER) == nullptr; }},
    {"GetWindowLongPtrW", [] { return GetWindowLongPtrW(nullptr, 0) == 0; }},
    {"GetWindowLongW", [] { return GetWindowLongW(nullptr, 0) == 0; }},
    {"GetWindowRect", [] { return GetWindowRect(nullptr, nullptr) == FALSE; }},
    {"GetWindowTextW", [] { return GetWindowTextW(nullptr, nullptr, 0) == 0; }},
    {"GetWindowThreadProcessId", [] { return GetWindowThreadProcessId(nullptr, nullptr) == 0; }},
    {"InitCommonControlsEx", [] { return InitCommonControlsEx(nullptr) == FALSE; }},
    {"InvalidateRect", [] { return InvalidateRect(kWindowOfNobody, nullptr, FALSE) == FALSE; }},
    {"KernelIoControl",
     [] { return KernelIoControl(0, nullptr, 0, nullptr, 0, nullptr) == FALSE; }},
    {"KillTimer", [] { return KillTimer(nullptr, 9) == FALSE; }},
    {"LoadAcceleratorsW", [] { return LoadAcceleratorsW(nullptr, nullptr) == nullptr; }},
    {"LoadCursorW", [] { return LoadCursorW(nullptr, nullptr) == nullptr; }},
    {"LoadIconW", [] { return LoadIconW(nullptr, nullptr) == nullptr; }},
    {"LoadImageW", [] { return LoadImageW(nullptr, nullptr, 99, 0, 0, 0) == nullptr; }},
    {"LoadResource", [] { return LoadResource(nullptr, nullptr) == nullptr; }},
    {"LoadStringW", [] { return LoadStringW(nullptr, 0, nullptr, 0) == 0; }},
    {"LockResource", [] { return LockResource(nullptr) == nullptr; }},
    {"MoveWindow", [] { return MoveWindow(nullptr, 0, 0, 1, 1, FALSE) == FALSE; }},
    {"MsgWaitForMultipleObjects",
     [] { return MsgWaitForMultipleObjects(99, nullptr, FALSE, 0, 0) == WAIT_FAILED; }},
    {"MsgWaitForMultipleObjectsEx",
     [] { return MsgWaitForMultipleObjectsEx(99, nullptr, 0, 0, 0) == WAIT_FAILED; }},
    {"OpenEventW", [] { return OpenEventW(0, FALSE, nullptr) == nullptr; }},
    {"OpenMsgQueue", [] { return OpenMsgQueue(nullptr, nullptr, nullptr) == nullptr; }},
    {"PatBlt", [] { return PatBlt(nullptr, 0, 0, 1, 1, PATCOPY) == FALSE; }},
    {"PostMessageW", [] { return PostMessageW(kWindowOfNobody, 0, 0, 0) == FALSE; }},
    {"PostThreadMessageW", [] { return PostThreadMessageW(0, 0, 0, 0) == FALSE; }},
    {"PulseEvent", [] { return PulseEvent(nullptr) == FALSE; }},
    {"PurgeComm", [] { return PurgeComm(nullptr, 0) == FALSE; }},
    {"ReadFile", [] { return ReadFile(nullptr, nullptr, 0, nullptr, nullptr) == FALSE; }},
    {"ReadMsgQueue",
     [] { return ReadMsgQueue(nullptr, nullptr, 0, nullptr, 0, nullptr) == FALSE; }},
    {"RegisterClassW", [] { return RegisterClassW(nullptr) == 0; }},
    {"RegisterWindowMessageW", [] { return RegisterWindowMessageW(nullptr) == 0; }},
    {"ReleaseDC", [] { return ReleaseDC(nullptr, nullptr) == 0; }},
    {"ReleaseMutex", [] { return ReleaseMutex(nullptr) == FALSE; }},
    {"RequestPowerNotifications", [] { return RequestPowerNotifications(nullptr, 0) == nullptr; }},
    {"ResetEvent", [] { return ResetEvent(nullptr) == FALSE; }},
    {"ScreenToClient", [] { return ScreenToClient(nullptr, nullptr) == FALSE; }},
    {"SelectObject", [] { return SelectObject(nullptr, nullptr) == nullptr; }},
    {"SendMessageW", [] { return SendMessageW(nullptr, 0, 0, 0) == 0; }},
    {"SendNotifyMessageW", [] { return SendNotifyMessageW(nullptr, 0, 0, 0) == FALSE; }},
    {"SetActiveWindow", [] { return SetActiveWindow(nullptr) == nullptr; }},
    {"SetBkColor", [] { return SetBkColor(nullptr, 0) == CLR_INVALID; }},
    {"SetBkMode", [] { return SetBkMode(nullptr, OPAQUE) == 0; }},
    {"SetCommMask", [] { return SetCommMask(nullptr, 0) == FALSE; }},
    {"SetCommState", [] { return SetCommState(nullptr, nullptr) == FALSE; }},
    {"SetCommTimeouts", [] { return SetCommTimeouts(nullptr, nullptr) == FALSE; }},
    {"SetEvent", [] { return SetEvent(nullptr) == FALSE; }},
    {"SetFocus", [] { return SetFocus(kWindowOfNobody) == nullptr; }},
    {"SetForegroundWindow", [] { return SetForegroundWindow(nullptr) == FALSE; }},
    {"SetPixel", [] { return SetPixel(nullptr, 0, 0, 0) == CLR_INVALID; }},
    {"SetSystemPowerState", [] { return SetSystemPowerState(nullptr, 0, 0) != ERROR_SUCCESS; }},
    {"SetTextColor", [] { return SetTextColor(nullptr, 0) == CLR_INVALID; }},
    {"SetThreadPriority", [] { return SetThreadPriority(nullptr, 0) == FALSE; }},
    {"SetTimer", [] { return SetTimer(kWindowOfNobody, 1, 10, nullptr) == 0; }},
    {"SetWindowLongPtrW", [] { return SetWindowLongPtrW(nullptr, 0, 0) == 0; }},
    {"SetWindowLongW", [] { return SetWindowLongW(nullptr, 0, 0) == 0; }},
    {"SetWindowPos", [] { return SetWindowPos(nullptr, nullptr, 0, 0, 1, 1, 0) == FALSE; }},
    {"SetWindowTextW", [] { return SetWindowTextW(nullptr, nullptr) == FALSE; }},
    {"ShowWindow", [] { return ShowWindow(nullptr, SW_SHOW) == FALSE; }},
    {"SizeofResource", [] { return SizeofResource(nullptr, nullptr) == 0; }},
    {"StopPowerNotifications", [] { return StopPowerNotifications(nullptr) != ERROR_SUCCESS; }},
    {"StretchBlt",
     [] { return StretchBlt(nullptr, 0, 0, 1, 1, nullptr, 0, 0, 1, 1, SRCCOPY) == FALSE; }},
    {"TranslateAcceleratorW", [] { return TranslateAcceleratorW(nullptr, nullptr, nullptr) == 0; }},
    {"TransparentImage",
     [] { return TransparentImage(nullptr, 0, 0, 1, 1, nullptr, 0, 0, 1, 1, 0) == FALSE; }},
    {"UnregisterClassW", [] { return UnregisterClassW(nullptr, nullptr) == FALSE; }},
    {"UpdateWindow", [] { return UpdateWindow(nullptr) == FALSE; }},
    {"ValidateRect", [] { return ValidateRect(nullptr, nullptr) == FALSE; }},
    {"VerQueryValueW", [] { return VerQueryValueW(nullptr, nullptr, nullptr, nullptr) == FALSE; }},
    {"WaitForMultipleObjects",
     [] { return WaitForMultipleObjects(0, nullptr, FALSE, 0) == WAIT_FAILED; }},
    {"WaitForSingleObject", [] { return WaitForSingleObject(nullptr, 0) == WAIT_FAILED; }},
    {"WriteFile", [] { return WriteFile(nullptr, nullptr, 0, nullptr, nullptr) == FALSE; }},
    {"WriteMsgQueue", [] { return WriteMsgQueue(nullptr, nullptr, 0, 0, 0) == FALSE; }},
};

// The two that a test's board cannot make fail.
bool WorksAnyway(std::string_view call) {
    return call == "CreateSolidBrush" || call == "SetSystemPowerState";
}

// The first and the third call of each fail for a reason of their own, the second on demand.
TEST(CallTable, EveryCallFailsWhenAskedToAndOnlyThen) {
    EXPECT_TRUE(
        std::ranges::equal(kFailingCalls, kernel::FailableCallNames(), {}, &FailingCall::name));
    constexpr DWORD kChosen = 424242;
    tests::Platform platform;
    platform.board.hal_answer = ERROR_NOT_SUPPORTED;
    platform.Run([&] {
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, kEventName);
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kMutexName);
        for (const FailingCall& call : kFailingCalls) {
            const std::uint64_t before = kernel::CallCount(call.name);
            EXPECT_EQ(kernel::AddCallFault({std::string(call.name), 1, 1, kChosen}), "");
            for (int number = 1; number <= 3; ++number) {
                SetLastError(0);
                EXPECT_EQ(call.failed(), number == 2 || !WorksAnyway(call.name)) << call.name;
                EXPECT_EQ(GetLastError() == kChosen, number == 2) << call.name << ' ' << number;
            }
            EXPECT_EQ(kernel::CallCount(call.name), before + 3) << call.name;
            EXPECT_EQ(kernel::FailedCalls().back().call, call.name);
            EXPECT_EQ(kernel::FailedCalls().back().number, before + 2) << call.name;
            EXPECT_EQ(kernel::PendingCallFaults().size(), 0U) << call.name;

            SetLastError(0);
            EXPECT_EQ(kernel::AddCallFault({.call = std::string(call.name)}), "");
            EXPECT_TRUE(call.failed()) << call.name;
            EXPECT_TRUE(GetLastError() != 0 && GetLastError() != kChosen) << call.name;
        }
        EXPECT_EQ(kernel::FailedCallCount(), 2 * std::size(kFailingCalls));
        CloseHandle(event);
        CloseHandle(mutex);
    });
}

}  // namespace
