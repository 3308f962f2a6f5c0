#include <windows.h>

#include <pkfuncs.h>
#include <pm.h>
#include <winioctl.h>

#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

namespace {

// A request of the unit's HAL; the device type is FILE_DEVICE_HAL.
constexpr DWORD kEnterSuspendMode = CTL_CODE(0x0101, 2056, METHOD_BUFFERED, FILE_ANY_ACCESS);
static_assert(kEnterSuspendMode == 0x01012020);

}  // namespace

void CMainFrame::SuspendSystem() {
    constexpr char kFunction[] = "CMainFrame::OnXCommand";
    DWORD magic = 0x5A5A;
    DWORD returned = 0;
    if (!KernelIoControl(kEnterSuspendMode, &magic, sizeof magic, nullptr, 0, &returned)) {
        LogFailure(
            L"%s\t%S, KernelIoControl( IOCTL_HAL_ENTER_SUSPEND_MODE ) fail!!!, ErrorCode(%d), "
            L"%S(%d)\r\n",
            kFunction, GetLastError());
        return;
    }
    NKDbgPrintfW(L"%s\t%S, SystemSuspend\r\n", kLogPrefix, kFunction);
    SetSystemPowerState(nullptr, POWER_STATE_OFF, POWER_FORCE);
}
