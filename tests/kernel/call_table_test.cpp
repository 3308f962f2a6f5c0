#include <commctrl.h>
#include <msgqueue.h>
#include <objbase.h>
#include <pkfuncs.h>
#include <pm.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <vector>

#include "platform/kernel/call_faults.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;

using Call = std::intptr_t (*)();

// Makes a call whose arguments are all zero.
template <class Result, class... Arguments>
struct WithZeros {
    template <Result (*kCall)(Arguments...)>
    static std::intptr_t Make() {
        return (std::intptr_t)kCall(Arguments{}...);
    }
};
template <class Result, class... Arguments>
WithZeros<Result, Arguments...> ZerosFor(Result (*)(Arguments...));

template <auto... kCalls>
std::vector<Call> AllOf() {
    return {decltype(ZerosFor(kCalls))::template Make<kCalls>...};
}

// In the order of the names.
std::vector<Call> FailableCalls() {
    return AllOf<
        BeginPaint, BitBlt, ClientToScreen, CloseHandle, CloseMsgQueue, CoInitializeEx,
        CreateBitmap, CreateCompatibleBitmap, CreateCompatibleDC, CreateDialogIndirectParamW,
        CreateEventW, CreateFileW, CreateFontIndirectW, CreateMsgQueue, CreateMutexW,
        CreateSolidBrush, CreateThread, CreateWindowExW, DeleteDC, DeleteObject, DestroyIcon,
        DestroyWindow, DeviceIoControl, DialogBoxIndirectParamW, DrawTextW, EnableWindow, EndDialog,
        EndPaint, FillRect, FindResourceW, FindWindowW, GetBkColor, GetBkMode, GetClassInfoW,
        GetClassNameW, GetClientRect, GetCommMask, GetCommState, GetCommTimeouts, GetCurrentObject,
        GetDC, GetDeviceCaps, GetExitCodeThread, GetFileVersionInfoSizeW, GetFileVersionInfoW,
        GetMessageW, GetModuleFileNameW, GetModuleHandleW, GetMsgQueueInfo, GetObjectType,
        GetObjectW, GetParent, GetPixel, GetStockObject, GetSysColorBrush, GetSystemMetrics,
        GetSystemPowerStatusEx2, GetTextColor, GetTextExtentPoint32W, GetTextMetricsW,
        GetThreadPriority, GetUpdateRect, GetWindow, GetWindowLongPtrW, GetWindowLongW,
        GetWindowRect, GetWindowTextW, GetWindowThreadProcessId, InitCommonControlsEx,
        InvalidateRect, KernelIoControl, KillTimer, LoadAcceleratorsW, LoadCursorW, LoadIconW,
        LoadImageW, LoadResource, LoadStringW, LockResource, MoveWindow, MsgWaitForMultipleObjects,
        MsgWaitForMultipleObjectsEx, OpenEventW, OpenMsgQueue, PatBlt, PostMessageW,
        PostThreadMessageW, PulseEvent, PurgeComm, ReadFile, ReadMsgQueue, RegisterClassW,
        RegisterWindowMessageW, ReleaseDC, ReleaseMutex, RequestPowerNotifications, ResetEvent,
        ScreenToClient, SelectObject, SendMessageW, SendNotifyMessageW, SetActiveWindow, SetBkColor,
        SetBkMode, SetCommMask, SetCommState, SetCommTimeouts, SetEvent, SetFocus,
        SetForegroundWindow, SetPixel, SetSystemPowerState, SetTextColor, SetThreadPriority,
        SetTimer, SetWindowLongPtrW, SetWindowLongW, SetWindowPos, SetWindowTextW, ShowWindow,
        SizeofResource, StopPowerNotifications, StretchBlt, TranslateAcceleratorW, TransparentImage,
        UnregisterClassW, UpdateWindow, ValidateRect, VerQueryValueW, WaitForMultipleObjects,
        WaitForSingleObject, WriteFile, WriteMsgQueue>();
}

constexpr DWORD kChosen = 424242;

// What the calls that do not fail with zero return, as the API documents it.
const std::map<std::string_view, std::intptr_t> kFailedResults = {
    {"CoInitializeEx", E_OUTOFMEMORY},
    {"CreateFileW", -1},
    {"DialogBoxIndirectParamW", -1},
    {"GetBkColor", CLR_INVALID},
    {"GetMessageW", -1},
    {"GetPixel", CLR_INVALID},
    {"GetTextColor", CLR_INVALID},
    {"GetThreadPriority", THREAD_PRIORITY_ERROR_RETURN},
    {"MsgWaitForMultipleObjects", WAIT_FAILED},
    {"MsgWaitForMultipleObjectsEx", WAIT_FAILED},
    {"SetBkColor", CLR_INVALID},
    {"SetPixel", CLR_INVALID},
    {"SetSystemPowerState", kChosen},
    {"SetTextColor", CLR_INVALID},
    {"StopPowerNotifications", kChosen},
    {"WaitForMultipleObjects", WAIT_FAILED},
    {"WaitForSingleObject", WAIT_FAILED},
};

// A call that went on to look at its arguments would return another value or leave another error.
TEST(CallTable, EveryCallFailsWhenAskedTo) {
    const std::vector<std::string_view> names = kernel::FailableCallNames();
    const std::vector<Call> calls = FailableCalls();
    ASSERT_EQ(calls.size(), names.size());
    tests::Platform platform;
    platform.Run([&] {
        for (std::size_t index = 0; index < calls.size(); ++index) {
            SCOPED_TRACE(names[index]);
            const std::string name(names[index]);
            const auto result = kFailedResults.find(name);
            EXPECT_EQ(kernel::AddCallFault({name, 0, 1, kChosen}), "");
            EXPECT_EQ(calls[index](), result == kFailedResults.end() ? 0 : result->second);
            EXPECT_EQ(GetLastError(), kChosen);
            EXPECT_EQ(kernel::AddCallFault({.call = name}), "");
            calls[index]();
            EXPECT_TRUE(GetLastError() != ERROR_SUCCESS && GetLastError() != kChosen);
            EXPECT_EQ(kernel::CallCount(name), 2U);
            EXPECT_EQ(kernel::PendingCallFaults().size(), 0U);
        }
    });
}

}  // namespace
