#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/window/activation.h"
#include "platform/window/neighbour_windows.h"

using namespace platform;
using namespace platform::window;

namespace {

constexpr UINT_PTR kWithOwnedWindows = 1;

// The highest visible and enabled window among a window and those it owns; itself if there is none.
HWND HighestOf(kernel::KernelLock& lock, HWND root) {
    for (const auto& window : TheDesktop(lock).z_order) {
        if (!window->visible() || !window->enabled() || window->being_destroyed)
            continue;
        HWND each = window->handle;
        while (each != NULL && each != root) {
            const auto owned = FindWindowObject(lock, each);
            each = owned ? owned->owner : NULL;
        }
        if (each == root)
            return window->handle;
    }
    return root;
}

// Of this process. False with the last error set when there is no such window.
bool BringOwn(HWND root, bool with_owned) {
    HWND chosen = root;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, root);
        if (!window)
            return false;
        if (window->being_destroyed) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return false;
        }
        if (with_owned)
            chosen = HighestOf(lock, root);
    }
    BringForward(chosen, WA_ACTIVE);
    return true;
}

}  // namespace

namespace platform::window {

bool BringOwnForward(NeighbourWindow window, bool with_owned) {
    const DWORD last_error = GetLastError();
    const bool there = BringOwn(reinterpret_cast<HWND>(window), with_owned);
    SetLastError(last_error);
    return there;
}

}  // namespace platform::window

// With the handle's lowest bit set the windows that it owns come forward with it, and the highest
// of them gets the foreground: a dialog, while the window itself is disabled.
BOOL SetForegroundWindow(HWND handle) {
    const kernel::ApiCall call("SetForegroundWindow");
    if (call.Fails())
        return FALSE;
    const UINT_PTR value = reinterpret_cast<UINT_PTR>(handle);
    const HWND root = reinterpret_cast<HWND>(value & ~kWithOwnedWindows);
    const bool with_owned = (value & kWithOwnedWindows) != 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const NeighbourWindow neighbour = NeighbourBehind(lock, root);
    lock.unlock();
    if (neighbour == 0)
        return BringOwn(root, with_owned);
    if (kernel::CurrentBoard().BringNeighbourForward(neighbour, with_owned))
        return TRUE;
    lock.lock();
    ForgetNeighbour(lock, root);
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
}

HWND GetForegroundWindow() {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    return TheDesktop(lock).foreground;
}

HWND GetActiveWindow() {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    return CurrentQueue(lock)->active;
}

HWND GetFocus() {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    return CurrentQueue(lock)->focus;
}
