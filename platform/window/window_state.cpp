#include "platform/kernel/api_call.h"
#include "platform/window/class_registry.h"

using namespace platform;
using namespace platform::window;

BOOL GetWindowRect(HWND handle, LPRECT rectangle) {
    const kernel::ApiCall call("GetWindowRect");
    if (call.Fails())
        return FALSE;
    if (!rectangle) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return FALSE;
    *rectangle = window->rectangle;
    return TRUE;
}

BOOL GetClientRect(HWND handle, LPRECT rectangle) {
    const kernel::ApiCall call("GetClientRect");
    if (call.Fails())
        return FALSE;
    if (!GetWindowRect(handle, rectangle))
        return FALSE;
    *rectangle = {0, 0, rectangle->right - rectangle->left, rectangle->bottom - rectangle->top};
    return TRUE;
}

BOOL ClientToScreen(HWND handle, LPPOINT point) {
    const kernel::ApiCall call("ClientToScreen");
    if (call.Fails())
        return FALSE;
    if (!point) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    RECT rectangle{};
    if (!GetWindowRect(handle, &rectangle))
        return FALSE;
    *point = {point->x + rectangle.left, point->y + rectangle.top};
    return TRUE;
}

DWORD GetWindowThreadProcessId(HWND handle, LPDWORD process_id) {
    const kernel::ApiCall call("GetWindowThreadProcessId");
    if (call.Fails())
        return 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return 0;
    if (process_id)
        *process_id = window->queue->process_id;
    return window->queue->thread_id;
}
