#include "windows/ce/emulator/system_functions.h"

#include <windows.h>

#include <commctrl.h>
#include <msgqueue.h>
#include <objbase.h>
#include <pkfuncs.h>
#include <pm.h>

#include <algorithm>
#include <iterator>

#include "windows/ce/emulator/forward.h"

namespace ce {
namespace {

struct Row {
    std::string_view name;
    SystemFunction function;
};

template <auto kFunction>
constexpr Row MakeRow(std::string_view name) {
    return {name, Forward<kFunction>};
}

// The functions that the platform supplies as the program calls them.
#define FORWARD(name) MakeRow<name>(#name)
constexpr Row kRows[] = {
    FORWARD(BitBlt),
    FORWARD(CloseHandle),
    FORWARD(CloseMsgQueue),
    FORWARD(CoInitializeEx),
    FORWARD(CoUninitialize),
    FORWARD(CreateCompatibleBitmap),
    FORWARD(CreateCompatibleDC),
    FORWARD(CreateEventW),
    FORWARD(CreateFileW),
    FORWARD(CreateMsgQueue),
    FORWARD(CreateMutexW),
    FORWARD(CreateSolidBrush),
    FORWARD(CreateWindowExW),
    FORWARD(DefWindowProcW),
    FORWARD(DeleteDC),
    FORWARD(DeleteObject),
    FORWARD(DestroyWindow),
    FORWARD(DeviceIoControl),
    FORWARD(DrawTextW),
    FORWARD(EndDialog),
    FORWARD(EqualRect),
    FORWARD(FillRect),
    FORWARD(FindWindowW),
    FORWARD(GetActiveWindow),
    FORWARD(GetClientRect),
    FORWARD(GetCommState),
    FORWARD(GetDC),
    FORWARD(GetFileVersionInfoSizeW),
    FORWARD(GetFileVersionInfoW),
    FORWARD(GetLastError),
    FORWARD(GetSystemMetrics),
    FORWARD(GetSystemPowerStatusEx2),
    FORWARD(GetTickCount),
    FORWARD(GetWindowRect),
    FORWARD(InitCommonControlsEx),
    FORWARD(InvalidateRect),
    FORWARD(KernelIoControl),
    FORWARD(KillTimer),
    FORWARD(LoadAcceleratorsW),
    FORWARD(LoadCursorW),
    FORWARD(LoadImageW),
    FORWARD(OpenEventW),
    FORWARD(PostMessageW),
    FORWARD(PostQuitMessage),
    FORWARD(PtInRect),
    FORWARD(ReadFile),
    FORWARD(RegisterWindowMessageW),
    FORWARD(ReleaseDC),
    FORWARD(RequestPowerNotifications),
    FORWARD(SelectObject),
    FORWARD(SendMessageW),
    FORWARD(SetBkMode),
    FORWARD(SetCommMask),
    FORWARD(SetCommState),
    FORWARD(SetCommTimeouts),
    FORWARD(SetForegroundWindow),
    FORWARD(SetLastError),
    FORWARD(SetSystemPowerState),
    FORWARD(SetTextColor),
    FORWARD(SetThreadPriority),
    FORWARD(SetTimer),
    MakeRow<SetWindowLongPtrW>("SetWindowLongW"),
    FORWARD(SetWindowPos),
    FORWARD(ShowWindow),
    FORWARD(Sleep),
    FORWARD(StopPowerNotifications),
    FORWARD(TransparentImage),
    FORWARD(UpdateWindow),
    FORWARD(WaitForSingleObject),
    FORWARD(WriteFile),
};
#undef FORWARD

}  // namespace

SystemFunction FindSystemFunction(std::string_view name) {
    if (const SystemFunction function = record::Find(name))
        return function;
    if (const SystemFunction function = runtime::Find(name))
        return function;
    const Row* const row = std::ranges::find(kRows, name, &Row::name);
    return row == std::end(kRows) ? nullptr : row->function;
}

}  // namespace ce
