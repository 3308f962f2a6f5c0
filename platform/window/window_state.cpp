#include <windows.h>

#include <cstring>

#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"

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

LONG_PTR SetWindowLongPtrW(HWND handle, int index, LONG_PTR value) {
    const kernel::ApiCall call("SetWindowLongPtrW");
    if (call.Fails())
        return 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return 0;
    if (index < 0 || std::size_t(index) + sizeof value > window->extra.size()) {
        SetLastError(ERROR_INVALID_INDEX);
        return 0;
    }
    LONG_PTR previous = 0;
    std::memcpy(&previous, window->extra.data() + index, sizeof previous);
    std::memcpy(window->extra.data() + index, &value, sizeof value);
    return previous;
}

// 0 for the measures of captions, scroll bars and menus, which windows do not have here.
int GetSystemMetrics(int index) {
    const kernel::ApiCall call("GetSystemMetrics");
    if (call.Fails())
        return 0;
    switch (index) {
        case SM_CXSCREEN:
        case SM_CXFULLSCREEN:
            return kScreenWidth;
        case SM_CYSCREEN:
        case SM_CYFULLSCREEN:
            return kScreenHeight;
        case SM_CXICON:
        case SM_CYICON:
        case SM_CXCURSOR:
        case SM_CYCURSOR:
            return 32;
        case SM_CXSMICON:
        case SM_CYSMICON:
            return 16;
        case SM_CXBORDER:
        case SM_CYBORDER:
            return 1;
        default:
            return 0;
    }
}
