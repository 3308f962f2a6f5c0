#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace platform::kernel {

// A call of the API that can fail, with the last error it fails with unless another is chosen.
struct FailableCall {
    std::string_view name;
    DWORD error;
};

// In order of the names.
inline constexpr FailableCall kFailableCalls[] = {
    {"BeginPaint", ERROR_INVALID_WINDOW_HANDLE},
    {"BitBlt", ERROR_INVALID_HANDLE},
    {"ClientToScreen", ERROR_INVALID_WINDOW_HANDLE},
    {"CloseHandle", ERROR_INVALID_HANDLE},
    {"CloseMsgQueue", ERROR_INVALID_HANDLE},
    {"CoInitializeEx", ERROR_OUTOFMEMORY},
    {"CreateBitmap", ERROR_NOT_ENOUGH_MEMORY},
    {"CreateCompatibleBitmap", ERROR_NOT_ENOUGH_MEMORY},
    {"CreateCompatibleDC", ERROR_NOT_ENOUGH_MEMORY},
    {"CreateDialogIndirectParamW", ERROR_NOT_ENOUGH_MEMORY},
    {"CreateEventW", ERROR_OUTOFMEMORY},
    {"CreateFileW", ERROR_DEV_NOT_EXIST},
    {"CreateFontIndirectW", ERROR_NOT_ENOUGH_MEMORY},
    {"CreateMsgQueue", ERROR_OUTOFMEMORY},
    {"CreateMutexW", ERROR_OUTOFMEMORY},
    {"CreateSolidBrush", ERROR_NOT_ENOUGH_MEMORY},
    {"CreateThread", ERROR_OUTOFMEMORY},
    {"CreateWindowExW", ERROR_NOT_ENOUGH_MEMORY},
    {"DeleteDC", ERROR_INVALID_HANDLE},
    {"DeleteObject", ERROR_INVALID_HANDLE},
    {"DestroyIcon", ERROR_INVALID_HANDLE},
    {"DestroyWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"DeviceIoControl", ERROR_GEN_FAILURE},
    {"DialogBoxIndirectParamW", ERROR_NOT_ENOUGH_MEMORY},
    {"DrawTextW", ERROR_INVALID_HANDLE},
    {"EnableWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"EndDialog", ERROR_INVALID_WINDOW_HANDLE},
    {"EndPaint", ERROR_INVALID_HANDLE},
    {"FillRect", ERROR_INVALID_HANDLE},
    {"FindResourceW", ERROR_RESOURCE_NAME_NOT_FOUND},
    {"FindWindowW", ERROR_CANNOT_FIND_WND_CLASS},
    {"GetBkColor", ERROR_INVALID_HANDLE},
    {"GetBkMode", ERROR_INVALID_HANDLE},
    {"GetClassInfoW", ERROR_CLASS_DOES_NOT_EXIST},
    {"GetClassNameW", ERROR_INVALID_WINDOW_HANDLE},
    {"GetClientRect", ERROR_INVALID_WINDOW_HANDLE},
    {"GetCommMask", ERROR_GEN_FAILURE},
    {"GetCommState", ERROR_GEN_FAILURE},
    {"GetCommTimeouts", ERROR_GEN_FAILURE},
    {"GetCurrentObject", ERROR_INVALID_HANDLE},
    {"GetDC", ERROR_INVALID_WINDOW_HANDLE},
    {"GetDeviceCaps", ERROR_INVALID_HANDLE},
    {"GetExitCodeThread", ERROR_INVALID_HANDLE},
    {"GetFileVersionInfoSizeW", ERROR_RESOURCE_TYPE_NOT_FOUND},
    {"GetFileVersionInfoW", ERROR_RESOURCE_TYPE_NOT_FOUND},
    {"GetMessageW", ERROR_INVALID_WINDOW_HANDLE},
    {"GetModuleFileNameW", ERROR_MOD_NOT_FOUND},
    {"GetModuleHandleW", ERROR_MOD_NOT_FOUND},
    {"GetMsgQueueInfo", ERROR_INVALID_HANDLE},
    {"GetObjectType", ERROR_INVALID_HANDLE},
    {"GetObjectW", ERROR_INVALID_HANDLE},
    {"GetParent", ERROR_INVALID_WINDOW_HANDLE},
    {"GetPixel", ERROR_INVALID_HANDLE},
    {"GetStockObject", ERROR_NOT_SUPPORTED},
    {"GetSysColorBrush", ERROR_INVALID_PARAMETER},
    {"GetSystemMetrics", ERROR_INVALID_PARAMETER},
    {"GetSystemPowerStatusEx2", ERROR_GEN_FAILURE},
    {"GetTextColor", ERROR_INVALID_HANDLE},
    {"GetTextExtentPoint32W", ERROR_INVALID_HANDLE},
    {"GetTextMetricsW", ERROR_INVALID_HANDLE},
    {"GetThreadPriority", ERROR_INVALID_HANDLE},
    {"GetUpdateRect", ERROR_INVALID_WINDOW_HANDLE},
    {"GetWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"GetWindowLongPtrW", ERROR_INVALID_WINDOW_HANDLE},
    {"GetWindowLongW", ERROR_INVALID_WINDOW_HANDLE},
    {"GetWindowRect", ERROR_INVALID_WINDOW_HANDLE},
    {"GetWindowTextW", ERROR_INVALID_WINDOW_HANDLE},
    {"GetWindowThreadProcessId", ERROR_INVALID_WINDOW_HANDLE},
    {"InitCommonControlsEx", ERROR_NOT_ENOUGH_MEMORY},
    {"InvalidateRect", ERROR_INVALID_WINDOW_HANDLE},
    {"KernelIoControl", ERROR_NOT_SUPPORTED},
    {"KillTimer", ERROR_INVALID_PARAMETER},
    {"LoadAcceleratorsW", ERROR_RESOURCE_NAME_NOT_FOUND},
    {"LoadCursorW", ERROR_RESOURCE_NAME_NOT_FOUND},
    {"LoadIconW", ERROR_RESOURCE_NAME_NOT_FOUND},
    {"LoadImageW", ERROR_RESOURCE_NAME_NOT_FOUND},
    {"LoadResource", ERROR_INVALID_HANDLE},
    {"LoadStringW", ERROR_RESOURCE_NAME_NOT_FOUND},
    {"LockResource", ERROR_INVALID_HANDLE},
    {"MoveWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"MsgWaitForMultipleObjects", ERROR_INVALID_HANDLE},
    {"MsgWaitForMultipleObjectsEx", ERROR_INVALID_HANDLE},
    {"OpenEventW", ERROR_FILE_NOT_FOUND},
    {"OpenMsgQueue", ERROR_OUTOFMEMORY},
    {"PatBlt", ERROR_INVALID_HANDLE},
    {"PostMessageW", ERROR_NOT_ENOUGH_QUOTA},
    {"PostThreadMessageW", ERROR_NOT_ENOUGH_QUOTA},
    {"PulseEvent", ERROR_INVALID_HANDLE},
    {"PurgeComm", ERROR_GEN_FAILURE},
    {"ReadFile", ERROR_GEN_FAILURE},
    {"ReadMsgQueue", ERROR_PIPE_NOT_CONNECTED},
    {"RegisterClassW", ERROR_NOT_ENOUGH_MEMORY},
    {"RegisterWindowMessageW", ERROR_NOT_ENOUGH_MEMORY},
    {"ReleaseDC", ERROR_DC_NOT_FOUND},
    {"ReleaseMutex", ERROR_NOT_OWNER},
    {"RequestPowerNotifications", ERROR_OUTOFMEMORY},
    {"ResetEvent", ERROR_INVALID_HANDLE},
    {"ScreenToClient", ERROR_INVALID_WINDOW_HANDLE},
    {"SelectObject", ERROR_INVALID_HANDLE},
    {"SendMessageW", ERROR_INVALID_WINDOW_HANDLE},
    {"SendNotifyMessageW", ERROR_NOT_ENOUGH_QUOTA},
    {"SetActiveWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"SetBkColor", ERROR_INVALID_HANDLE},
    {"SetBkMode", ERROR_INVALID_HANDLE},
    {"SetCommMask", ERROR_GEN_FAILURE},
    {"SetCommState", ERROR_GEN_FAILURE},
    {"SetCommTimeouts", ERROR_GEN_FAILURE},
    {"SetEvent", ERROR_INVALID_HANDLE},
    {"SetFocus", ERROR_INVALID_WINDOW_HANDLE},
    {"SetForegroundWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"SetPixel", ERROR_INVALID_HANDLE},
    {"SetSystemPowerState", ERROR_GEN_FAILURE},
    {"SetTextColor", ERROR_INVALID_HANDLE},
    {"SetThreadPriority", ERROR_INVALID_HANDLE},
    {"SetTimer", ERROR_NOT_ENOUGH_MEMORY},
    {"SetWindowLongPtrW", ERROR_INVALID_WINDOW_HANDLE},
    {"SetWindowLongW", ERROR_INVALID_WINDOW_HANDLE},
    {"SetWindowPos", ERROR_INVALID_WINDOW_HANDLE},
    {"SetWindowTextW", ERROR_INVALID_WINDOW_HANDLE},
    {"ShowWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"SizeofResource", ERROR_INVALID_HANDLE},
    {"StopPowerNotifications", ERROR_INVALID_HANDLE},
    {"StretchBlt", ERROR_INVALID_HANDLE},
    {"TranslateAcceleratorW", ERROR_INVALID_ACCEL_HANDLE},
    {"TransparentImage", ERROR_INVALID_HANDLE},
    {"UnregisterClassW", ERROR_CLASS_DOES_NOT_EXIST},
    {"UpdateWindow", ERROR_INVALID_WINDOW_HANDLE},
    {"ValidateRect", ERROR_INVALID_WINDOW_HANDLE},
    {"VerQueryValueW", ERROR_RESOURCE_TYPE_NOT_FOUND},
    {"WaitForMultipleObjects", ERROR_INVALID_HANDLE},
    {"WaitForSingleObject", ERROR_INVALID_HANDLE},
    {"WriteFile", ERROR_GEN_FAILURE},
    {"WriteMsgQueue", ERROR_PIPE_NOT_CONNECTED},
};

// Calls that have no failure to show: they return nothing, a plain fact, or what the program's own
// procedure returned; or, as critical sections and formatting, leave a program no way to go on. In
// order of the names.
inline constexpr std::string_view kCallsThatCannotFail[] = {
    "CallWindowProcW",
    "CoUninitialize",
    "DefDlgProcW",
    "DefWindowProcW",
    "DeleteCriticalSection",
    "DispatchMessageW",
    "EnterCriticalSection",
    "EqualRect",
    "GetActiveWindow",
    "GetCurrentProcess",
    "GetCurrentProcessId",
    "GetCurrentThread",
    "GetCurrentThreadId",
    "GetFocus",
    "GetForegroundWindow",
    "GetLastError",
    "GetSysColor",
    "GetTickCount",
    "InSendMessage",
    "InitializeCriticalSection",
    "IntersectRect",
    "IsRectEmpty",
    "IsWindow",
    "IsWindowEnabled",
    "IsWindowVisible",
    "LeaveCriticalSection",
    "NKDbgPrintfW",
    "OffsetRect",
    "PeekMessageW",
    "PostQuitMessage",
    "PtInRect",
    "SetLastError",
    "SetRect",
    "SetRectEmpty",
    "Sleep",
    "TranslateMessage",
    "TryEnterCriticalSection",
    "UnionRect",
    "lstrlenW",
    "wsprintfW",
    "wvsprintfW",
};

inline constexpr std::size_t kFailableCallCount = std::size(kFailableCalls);

// Ascending, none twice.
static_assert(std::ranges::adjacent_find(kFailableCalls, std::ranges::greater_equal{},
                                         &FailableCall::name) == std::end(kFailableCalls));
static_assert(std::ranges::adjacent_find(kCallsThatCannotFail, std::ranges::greater_equal{}) ==
              std::end(kCallsThatCannotFail));

// The row of a call that can fail.
constexpr std::optional<std::size_t> FindFailableCall(std::string_view name) {
    const auto row = std::ranges::lower_bound(kFailableCalls, name, {}, &FailableCall::name);
    if (row == std::ranges::end(kFailableCalls) || row->name != name)
        return std::nullopt;
    return static_cast<std::size_t>(row - std::ranges::begin(kFailableCalls));
}

}  // namespace platform::kernel
