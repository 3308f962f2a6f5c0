#include "platform/window/activation.h"

#include <utility>

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/procedure.h"
#include "platform/window/z_order.h"

namespace platform::window {
namespace {

bool CanTakeOver(const Window& window) {
    return window.visible() && window.enabled() && !window.being_destroyed &&
           (window.extended_style & WS_EX_NOACTIVATE) == 0;
}

// The window that takes over from one that leaves: its owner, else the highest window of its
// thread, else the highest of all.
HWND Successor(kernel::KernelLock& lock, const Window& leaving) {
    const auto owner = leaving.owner ? FindWindowObject(lock, leaving.owner) : nullptr;
    if (owner && CanTakeOver(*owner))
        return owner->handle;
    HWND of_any_thread = NULL;
    for (const auto& window : TheDesktop(lock).z_order) {
        if (window.get() == &leaving || !CanTakeOver(*window))
            continue;
        if (window->queue == leaving.queue)
            return window->handle;
        if (!of_any_thread)
            of_any_thread = window->handle;
    }
    return of_any_thread;
}

// Moves the calling thread's focus; NULL: no window has it.
void MoveFocus(const std::shared_ptr<MessageQueue>& queue, HWND window) {
    HWND previous = NULL;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        previous = std::exchange(queue->focus, window);
    }
    if (previous == window)
        return;
    CallProcedure(previous, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    kernel::KernelLock lock = kernel::LockKernel();
    const bool kept = queue->focus == window;
    lock.unlock();
    if (kept)
        CallProcedure(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(previous), 0);
}

// On the thread of `window`, which lost the foreground to `taker`.
void Deactivate(HWND window, HWND taker) {
    std::shared_ptr<MessageQueue> queue;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = FindWindowObject(lock, window);
        if (!target || target->queue->active != window || TheDesktop(lock).foreground == window)
            return;
        queue = target->queue;
        queue->active = NULL;
    }
    CallProcedure(window, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(taker));
    MoveFocus(queue, NULL);
}

// On the thread of `window`, which got the foreground, unless it lost it again meanwhile.
void Activate(HWND window, UINT how) {
    std::shared_ptr<MessageQueue> queue;
    HWND previous = NULL;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = FindWindowObject(lock, window);
        if (!target || TheDesktop(lock).foreground != window)
            return;
        queue = target->queue;
        previous = std::exchange(queue->active, window);
    }
    const auto still_active = [&] {
        kernel::KernelLock lock = kernel::LockKernel();
        return queue->active == window && FindWindowObject(lock, window);
    };
    if (previous == window)
        return;
    CallProcedure(previous, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(window));
    if (still_active())
        CallProcedure(window, WM_ACTIVATE, how, reinterpret_cast<LPARAM>(previous));
    if (!still_active())
        return;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = FindWindowObject(lock, window);
    const bool can_focus = target && target->enabled();
    lock.unlock();
    MoveFocus(queue, can_focus ? window : NULL);
}

}  // namespace

void BringForward(HWND window, UINT how) {
    std::shared_ptr<MessageQueue> queue;
    std::shared_ptr<Window> previous;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = FindWindowObject(lock, window);
        if (!target || target->being_destroyed)
            return;
        MoveToTop(lock, *target, true);
        if (target->visible()) {
            queue = target->queue;
            previous = FindWindowObject(lock, std::exchange(TheDesktop(lock).foreground, window));
        }
    }
    if (!queue)
        return;
    ScreenChanged();
    if (previous && previous->queue != queue)
        RunOn(previous->queue, [loser = previous->handle, window] { Deactivate(loser, window); });
    RunOn(queue, [window, how] { Activate(window, how); });
}

void ActivateTouched(HWND window) {
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = FindWindowObject(lock, window);
        if (!target || !CanTakeOver(*target) || TheDesktop(lock).foreground == window)
            return;
    }
    BringForward(window, WA_CLICKACTIVE);
}

void PassForegroundOn(HWND window) {
    HWND next = NULL;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto leaving = FindWindowObject(lock, window);
        if (!leaving || TheDesktop(lock).foreground != window)
            return;
        next = Successor(lock, *leaving);
        if (!next)
            TheDesktop(lock).foreground = NULL;
    }
    if (next)
        BringForward(next, WA_ACTIVE);
}

void LeaveActivation(HWND window) {
    PassForegroundOn(window);
    kernel::KernelLock lock = kernel::LockKernel();
    const auto leaving = FindWindowObject(lock, window);
    if (!leaving)
        return;
    const HWND taker = TheDesktop(lock).foreground;
    lock.unlock();
    RunOn(leaving->queue, [window, taker] { Deactivate(window, taker); });
}

void DropFocus(HWND window) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = FindWindowObject(lock, window);
    if (!target || target->queue->focus != window)
        return;
    lock.unlock();
    RunOn(target->queue, [target] {
        kernel::KernelLock inner = kernel::LockKernel();
        const bool loses = !target->enabled() && target->queue->focus == target->handle;
        inner.unlock();
        if (loses)
            MoveFocus(target->queue, NULL);
    });
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

HWND GetActiveWindow() {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    return CurrentQueue(lock)->active;
}
