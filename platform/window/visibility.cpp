#include "platform/kernel/api_call.h"
#include "platform/window/activation.h"
#include "platform/window/desktop.h"
#include "platform/window/position.h"
#include "platform/window/procedure.h"

using namespace platform;
using namespace platform::window;

namespace {

// The SetWindowPos flags of a show command; 0 when it is not supported.
UINT FlagsOf(int command) {
    constexpr UINT kStay = SWP_NOMOVE | SWP_NOSIZE;
    switch (command) {
        case SW_HIDE:
            return kStay | SWP_NOZORDER | SWP_NOACTIVATE | SWP_HIDEWINDOW;
        case SW_SHOW:
        case SW_SHOWNORMAL:
        case SW_RESTORE:
            return kStay | SWP_SHOWWINDOW;
        case SW_SHOWNA:
        case SW_SHOWNOACTIVATE:
            return kStay | SWP_NOACTIVATE | SWP_NOZORDER | SWP_SHOWWINDOW;
        case SW_MAXIMIZE:
        case SW_SHOWMAXIMIZED:
            return SWP_SHOWWINDOW;
        default:
            return 0;
    }
}

}  // namespace

BOOL ShowWindow(HWND handle, int command) {
    const kernel::ApiCall call("ShowWindow");
    if (call.Fails())
        return FALSE;
    const UINT flags = FlagsOf(command);
    bool was_visible = false;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, handle);
        if (!window)
            return FALSE;
        was_visible = window->visible();
    }
    if (flags == 0) {
        SetLastError(command == SW_MINIMIZE ? ERROR_CALL_NOT_IMPLEMENTED
                                            : ERROR_INVALID_SHOWWIN_COMMAND);
        return was_visible;
    }
    const bool shows = (flags & SWP_SHOWWINDOW) != 0;
    if (shows != was_visible)
        Notify(handle, WM_SHOWWINDOW, shows, 0);
    ChangePosition({handle, HWND_TOP, 0, 0, kScreenWidth, kScreenHeight, flags});
    return was_visible;
}

BOOL EnableWindow(HWND handle, BOOL enable) {
    const kernel::ApiCall call("EnableWindow");
    if (call.Fails())
        return FALSE;
    bool was_enabled = false;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, handle);
        if (!window)
            return FALSE;
        was_enabled = window->enabled();
        window->style &= ~WS_DISABLED;
        window->style |= enable ? 0 : WS_DISABLED;
    }
    if (was_enabled == (enable != FALSE))
        return !was_enabled;
    if (!enable) {
        Notify(handle, WM_CANCELMODE, 0, 0);
        DropFocus(handle);
    }
    Notify(handle, WM_ENABLE, enable != FALSE, 0);
    return !was_enabled;
}

BOOL IsWindowVisible(HWND handle) {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    return window && window->visible();
}

BOOL IsWindowEnabled(HWND handle) {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    return window && window->enabled();
}
