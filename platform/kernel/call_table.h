#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace platform::kernel {

// A call of the API that can fail, with its default last error.
struct FailableCall {
    std::string_view name;
    DWORD error;
};

// In order of the names: CALL(name, error).
#define PLATFORM_FAILABLE_CALLS(CALL)                            \
    CALL(BeginPaint, ERROR_INVALID_WINDOW_HANDLE)                \
    CALL(BitBlt, ERROR_INVALID_HANDLE)                           \
    CALL(CloseHandle, ERROR_INVALID_HANDLE)                      \
    CALL(CloseMsgQueue, ERROR_INVALID_HANDLE)                    \
    CALL(CoInitializeEx, ERROR_OUTOFMEMORY)                      \
    CALL(CreateCompatibleBitmap, ERROR_NOT_ENOUGH_MEMORY)        \
    CALL(CreateCompatibleDC, ERROR_NOT_ENOUGH_MEMORY)            \
    CALL(CreateEventW, ERROR_OUTOFMEMORY)                        \
    CALL(CreateFileW, ERROR_DEV_NOT_EXIST)                       \
    CALL(CreateFontIndirectW, ERROR_NOT_ENOUGH_MEMORY)           \
    CALL(CreateMsgQueue, ERROR_OUTOFMEMORY)                      \
    CALL(CreateMutexW, ERROR_OUTOFMEMORY)                        \
    CALL(CreateSolidBrush, ERROR_NOT_ENOUGH_MEMORY)              \
    CALL(CreateThread, ERROR_OUTOFMEMORY)                        \
    CALL(CreateWindowExW, ERROR_NOT_ENOUGH_MEMORY)               \
    CALL(DeleteDC, ERROR_INVALID_HANDLE)                         \
    CALL(DeleteObject, ERROR_INVALID_HANDLE)                     \
    CALL(DestroyWindow, ERROR_INVALID_WINDOW_HANDLE)             \
    CALL(DeviceIoControl, ERROR_GEN_FAILURE)                     \
    CALL(DialogBoxIndirectParamW, ERROR_NOT_ENOUGH_MEMORY)       \
    CALL(DrawTextW, ERROR_INVALID_HANDLE)                        \
    CALL(EndDialog, ERROR_INVALID_WINDOW_HANDLE)                 \
    CALL(EndPaint, ERROR_INVALID_HANDLE)                         \
    CALL(FillRect, ERROR_INVALID_HANDLE)                         \
    CALL(FindResourceW, ERROR_RESOURCE_NAME_NOT_FOUND)           \
    CALL(FindWindowW, ERROR_CANNOT_FIND_WND_CLASS)               \
    CALL(GetClassInfoW, ERROR_CLASS_DOES_NOT_EXIST)              \
    CALL(GetClientRect, ERROR_INVALID_WINDOW_HANDLE)             \
    CALL(GetCommMask, ERROR_GEN_FAILURE)                         \
    CALL(GetCommState, ERROR_GEN_FAILURE)                        \
    CALL(GetCommTimeouts, ERROR_GEN_FAILURE)                     \
    CALL(GetDC, ERROR_INVALID_WINDOW_HANDLE)                     \
    CALL(GetFileVersionInfoSizeW, ERROR_RESOURCE_TYPE_NOT_FOUND) \
    CALL(GetFileVersionInfoW, ERROR_RESOURCE_TYPE_NOT_FOUND)     \
    CALL(GetMessageW, ERROR_INVALID_WINDOW_HANDLE)               \
    CALL(GetModuleFileNameW, ERROR_MOD_NOT_FOUND)                \
    CALL(GetObjectW, ERROR_INVALID_HANDLE)                       \
    CALL(GetSystemMetrics, ERROR_INVALID_PARAMETER)              \
    CALL(GetSystemPowerStatusEx2, ERROR_GEN_FAILURE)             \
    CALL(GetWindowRect, ERROR_INVALID_WINDOW_HANDLE)             \
    CALL(InitCommonControlsEx, ERROR_NOT_ENOUGH_MEMORY)          \
    CALL(InvalidateRect, ERROR_INVALID_WINDOW_HANDLE)            \
    CALL(KernelIoControl, ERROR_NOT_SUPPORTED)                   \
    CALL(KillTimer, ERROR_INVALID_PARAMETER)                     \
    CALL(LoadAcceleratorsW, ERROR_RESOURCE_NAME_NOT_FOUND)       \
    CALL(LoadCursorW, ERROR_RESOURCE_NAME_NOT_FOUND)             \
    CALL(LoadImageW, ERROR_RESOURCE_NAME_NOT_FOUND)              \
    CALL(LoadResource, ERROR_INVALID_HANDLE)                     \
    CALL(LoadStringW, ERROR_RESOURCE_NAME_NOT_FOUND)             \
    CALL(LockResource, ERROR_INVALID_HANDLE)                     \
    CALL(MsgWaitForMultipleObjects, ERROR_INVALID_HANDLE)        \
    CALL(OpenEventW, ERROR_FILE_NOT_FOUND)                       \
    CALL(PostMessageW, ERROR_NOT_ENOUGH_QUOTA)                   \
    CALL(ReadFile, ERROR_GEN_FAILURE)                            \
    CALL(ReadMsgQueue, ERROR_PIPE_NOT_CONNECTED)                 \
    CALL(RegisterClassW, ERROR_NOT_ENOUGH_MEMORY)                \
    CALL(RegisterWindowMessageW, ERROR_NOT_ENOUGH_MEMORY)        \
    CALL(ReleaseDC, ERROR_DC_NOT_FOUND)                          \
    CALL(RequestPowerNotifications, ERROR_OUTOFMEMORY)           \
    CALL(SelectObject, ERROR_INVALID_HANDLE)                     \
    CALL(SendMessageW, ERROR_INVALID_WINDOW_HANDLE)              \
    CALL(SetBkMode, ERROR_INVALID_HANDLE)                        \
    CALL(SetCommMask, ERROR_GEN_FAILURE)                         \
    CALL(SetCommState, ERROR_GEN_FAILURE)                        \
    CALL(SetCommTimeouts, ERROR_GEN_FAILURE)                     \
    CALL(SetEvent, ERROR_INVALID_HANDLE)                         \
    CALL(SetForegroundWindow, ERROR_INVALID_WINDOW_HANDLE)       \
    CALL(SetSystemPowerState, ERROR_GEN_FAILURE)                 \
    CALL(SetTextColor, ERROR_INVALID_HANDLE)                     \
    CALL(SetThreadPriority, ERROR_INVALID_HANDLE)                \
    CALL(SetTimer, ERROR_NOT_ENOUGH_MEMORY)                      \
    CALL(SetWindowLongPtrW, ERROR_INVALID_WINDOW_HANDLE)         \
    CALL(SetWindowPos, ERROR_INVALID_WINDOW_HANDLE)              \
    CALL(ShowWindow, ERROR_INVALID_WINDOW_HANDLE)                \
    CALL(StopPowerNotifications, ERROR_INVALID_HANDLE)           \
    CALL(TranslateAcceleratorW, ERROR_INVALID_ACCEL_HANDLE)      \
    CALL(TransparentImage, ERROR_INVALID_HANDLE)                 \
    CALL(UpdateWindow, ERROR_INVALID_WINDOW_HANDLE)              \
    CALL(VerQueryValueW, ERROR_RESOURCE_TYPE_NOT_FOUND)          \
    CALL(WaitForMultipleObjects, ERROR_INVALID_HANDLE)           \
    CALL(WaitForSingleObject, ERROR_INVALID_HANDLE)              \
    CALL(WriteFile, ERROR_GEN_FAILURE)

inline constexpr FailableCall kFailableCalls[] = {
#define PLATFORM_ROW(name, error) {#name, error},
    PLATFORM_FAILABLE_CALLS(PLATFORM_ROW)
#undef PLATFORM_ROW
};

// Calls without a failing result: they return nothing, a plain fact, or the result of the program's
// own procedure; or a program cannot react to their failure (critical sections, formatting). In
// order of the names.
inline constexpr std::string_view kCallsThatCannotFail[] = {
    "CoUninitialize",
    "DefWindowProcW",
    "DeleteCriticalSection",
    "DispatchMessageW",
    "EnterCriticalSection",
    "EqualRect",
    "GetActiveWindow",
    "GetCurrentThread",
    "GetLastError",
    "GetTickCount",
    "InitializeCriticalSection",
    "LeaveCriticalSection",
    "NKDbgPrintfW",
    "PeekMessageW",
    "PostQuitMessage",
    "PtInRect",
    "SetLastError",
    "Sleep",
    "TranslateMessage",
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
