#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"
#include "platform/window/procedure.h"

using namespace platform;
using namespace platform::window;

namespace {

LRESULT SendToAll(UINT message, WPARAM wparam, LPARAM lparam) {
    std::vector<HWND> windows;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        for (const auto& window : TheDesktop(lock).z_order)
            windows.push_back(window->handle);
    }
    for (const HWND window : windows) {
        LRESULT ignored = 0;
        SendAndWait(window, message, wparam, lparam, ignored);
    }
    return TRUE;
}

}  // namespace

LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call("SendMessageW");
    if (call.Fails())
        return 0;
    if (window == HWND_BROADCAST)
        return SendToAll(message, wparam, lparam);
    LRESULT result = 0;
    SendAndWait(window, message, wparam, lparam, result);
    return result;
}

BOOL SendNotifyMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call("SendNotifyMessageW");
    if (call.Fails())
        return FALSE;
    std::vector<HWND> targets;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        if (window == HWND_BROADCAST) {
            for (const auto& each : TheDesktop(lock).z_order)
                targets.push_back(each->handle);
        } else if (RequireWindow(lock, window)) {
            targets.push_back(window);
        } else {
            return FALSE;
        }
    }
    BOOL taken = TRUE;
    for (const HWND target : targets)
        if (!Notify(target, message, wparam, lparam) && window != HWND_BROADCAST)
            taken = FALSE;
    if (!taken)
        SetLastError(ERROR_NOT_ENOUGH_QUOTA);
    return taken;
}
