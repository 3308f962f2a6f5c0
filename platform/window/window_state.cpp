#include "platform/kernel/api_call.h"
#include "platform/window/class_registry.h"

using namespace platform;
using namespace platform::window;

namespace {

// By the window's place on the screen, `times` so far; false with the last error set.
bool MoveByOrigin(HWND handle, LPPOINT point, int times) {
    RECT rectangle{};
    if (!point) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    if (!GetWindowRect(handle, &rectangle))
        return false;
    *point = {point->x + times * rectangle.left, point->y + times * rectangle.top};
    return true;
}

}  // namespace

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

BOOL ScreenToClient(HWND handle, LPPOINT point) {
    const kernel::ApiCall call("ScreenToClient");
    return !call.Fails() && MoveByOrigin(handle, point, -1);
}

BOOL ClientToScreen(HWND handle, LPPOINT point) {
    const kernel::ApiCall call("ClientToScreen");
    return !call.Fails() && MoveByOrigin(handle, point, 1);
}

HWND GetWindow(HWND handle, UINT relation) {
    const kernel::ApiCall call("GetWindow");
    if (call.Fails())
        return NULL;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return NULL;
    const auto& order = TheDesktop(lock).z_order;
    const auto at = std::find(order.begin(), order.end(), window);
    switch (relation) {
        case GW_HWNDFIRST:
            return order.front()->handle;
        case GW_HWNDLAST:
            return order.back()->handle;
        case GW_HWNDNEXT:
            return at + 1 == order.end() ? NULL : (*(at + 1))->handle;
        case GW_HWNDPREV:
            return at == order.begin() ? NULL : (*(at - 1))->handle;
        case GW_OWNER:
            return window->owner;
        case GW_CHILD:
            return NULL;
        default:
            SetLastError(ERROR_INVALID_PARAMETER);
            return NULL;
    }
}

// The owner, as far as a window is a popup.
HWND GetParent(HWND handle) {
    const kernel::ApiCall call("GetParent");
    if (call.Fails())
        return NULL;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    return window && (window->style & WS_POPUP) != 0 ? window->owner : NULL;
}

int GetClassNameW(HWND handle, LPWSTR name, int size) {
    const kernel::ApiCall call("GetClassNameW");
    if (call.Fails())
        return 0;
    if (!name || size <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return 0;
    const std::wstring& text = window->window_class->name;
    const std::size_t copied = text.copy(name, static_cast<std::size_t>(size) - 1);
    name[copied] = L'\0';
    return static_cast<int>(copied);
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
