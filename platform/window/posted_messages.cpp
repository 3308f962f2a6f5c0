#include <functional>
#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/desktop.h"

using namespace platform;
using namespace platform::window;

namespace {

bool PostTo(kernel::KernelLock& lock, MessageQueue& queue, HWND window, UINT message, WPARAM wparam,
            LPARAM lparam) {
    if (Post(lock, queue, window, message, wparam, lparam))
        return true;
    SetLastError(ERROR_NOT_ENOUGH_QUOTA);
    return false;
}

// A full queue misses a broadcast without a word: the poster has done its part.
void Broadcast(UINT message, WPARAM wparam, LPARAM lparam) {
    PostToAll(message, wparam, lparam);
    std::function<void(UINT, WPARAM, LPARAM)> observer;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        observer = TheDesktop(lock).broadcast_observer;
    }
    if (observer)
        observer(message, wparam, lparam);
}

}  // namespace

namespace platform::window {

void PostToAll(UINT message, WPARAM wparam, LPARAM lparam) {
    kernel::KernelLock lock = kernel::LockKernel();
    for (const auto& window : TheDesktop(lock).z_order)
        Post(lock, *window->queue, window->handle, message, wparam, lparam);
}

}  // namespace platform::window

BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call("PostMessageW");
    if (call.Fails())
        return FALSE;
    if (window == HWND_BROADCAST) {
        Broadcast(message, wparam, lparam);
        return TRUE;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    if (window == NULL)
        return PostTo(lock, *CurrentQueue(lock), NULL, message, wparam, lparam);
    const auto target = RequireWindow(lock, window);
    return target && PostTo(lock, *target->queue, window, message, wparam, lparam);
}

BOOL PostThreadMessageW(DWORD thread_id, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call("PostThreadMessageW");
    if (call.Fails())
        return FALSE;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto queue =
        thread_id == kernel::CurrentThread().id ? CurrentQueue(lock) : FindQueue(lock, thread_id);
    if (!queue) {
        SetLastError(ERROR_INVALID_THREAD_ID);
        return FALSE;
    }
    return PostTo(lock, *queue, NULL, message, wparam, lparam);
}

VOID PostQuitMessage(int exit_code) {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    CurrentQueue(lock)->quit_code = exit_code;
}
