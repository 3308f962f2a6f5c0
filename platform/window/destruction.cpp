#include "platform/window/destruction.h"

#include <algorithm>

#include "platform/gdi/device_context.h"
#include "platform/kernel/api_call.h"
#include "platform/window/activation.h"
#include "platform/window/paint.h"
#include "platform/window/procedure.h"

namespace platform::window {
namespace {

std::vector<std::shared_ptr<Window>> OwnedBy(kernel::KernelLock& lock, HWND owner) {
    std::vector<std::shared_ptr<Window>> owned;
    for (const auto& window : TheDesktop(lock).z_order)
        if (window->owner == owner)
            owned.push_back(window);
    return owned;
}

void Hide(HWND handle) {
    WINDOWPOS position{};
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = FindWindowObject(lock, handle);
        if (!window || !window->visible())
            return;
        window->style &= ~WS_VISIBLE;
        Validate(*window);
        position = {handle,
                    NULL,
                    window->rectangle.left,
                    window->rectangle.top,
                    window->width(),
                    window->height(),
                    SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_HIDEWINDOW};
    }
    ScreenChanged();
    NotifyPosition(position);
}

void DestroyOwned(HWND owner) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto owned = OwnedBy(lock, owner);
    lock.unlock();
    for (const auto& window : owned)
        RunOn(window->queue, [handle = window->handle] { DestroyOwn(handle); });
}

}  // namespace

void DestroyOwn(HWND handle) {
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = FindWindowObject(lock, handle);
        if (!window || window->being_destroyed)
            return;
        window->being_destroyed = true;
    }
    Hide(handle);
    DestroyOwned(handle);
    LeaveActivation(handle);
    CallProcedure(handle, WM_DESTROY, 0, 0);
    CallProcedure(handle, WM_NCDESTROY, 0, 0);
    Discard(handle);
}

void Discard(HWND handle) {
    std::shared_ptr<Window> window;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        Desktop& desktop = TheDesktop(lock);
        window = desktop.windows.Remove(reinterpret_cast<std::uintptr_t>(handle));
        if (!window)
            return;
        std::erase(desktop.z_order, window);
        for (const auto& owned : OwnedBy(lock, handle))
            owned->owner = NULL;
        MessageQueue& queue = *window->queue;
        ForgetMessages(lock, queue, handle);
        for (HWND* place : {&queue.active, &queue.focus, &desktop.foreground})
            if (*place == handle)
                *place = NULL;
    }
    for (const HDC dc : window->device_contexts)
        gdi::DestroyWindowDC(dc);
    if (window->visible())
        ScreenChanged();
}

void EndThread() {
    std::vector<std::shared_ptr<Window>> own;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        for (const auto& window : TheDesktop(lock).z_order)
            if (IsOwn(lock, *window))
                own.push_back(window);
        // Owned windows of this thread are in the list themselves.
        for (const auto& window : own)
            window->being_destroyed = true;
    }
    for (const auto& window : own) {
        DestroyOwned(window->handle);
        PassForegroundOn(window->handle);
        Discard(window->handle);
    }
    kernel::KernelLock lock = kernel::LockKernel();
    CloseCurrentQueue(lock);
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

BOOL DestroyWindow(HWND handle) {
    const kernel::ApiCall call("DestroyWindow");
    if (call.Fails())
        return FALSE;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, handle);
        if (!window)
            return FALSE;
        if (!IsOwn(lock, *window)) {
            SetLastError(ERROR_ACCESS_DENIED);
            return FALSE;
        }
        if (window->being_destroyed) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return FALSE;
        }
    }
    DestroyOwn(handle);
    return TRUE;
}
