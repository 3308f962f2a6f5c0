#include "platform/window/paint.h"

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/procedure.h"
#include "platform/window/rectangle.h"
#include "platform/window/retrieval.h"
#include "platform/window/window_dc.h"

namespace platform::window {
namespace {

// A window that never validates gets WM_PAINT again and again, but not more often than this: the
// simulated clock must be able to advance.
constexpr kernel::Duration kPaintAgainAfter = std::chrono::milliseconds(1);

bool MustPaint(const Window& window) {
    return window.visible() && !IsEmpty(window.update.rectangle);
}

// On the window's thread. Painted or hidden meanwhile, the window needs no paint.
void PaintNow(HWND window) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = FindWindowObject(lock, window);
    const bool must_paint = target && MustPaint(*target);
    lock.unlock();
    if (must_paint)
        CallProcedure(window, WM_PAINT, 0, 0);
}

}  // namespace

void Invalidate(kernel::KernelLock& lock, Window& window, const RECT* part, bool erase) {
    if (!window.visible())
        return;
    const RECT client{0, 0, window.width(), window.height()};
    const RECT wanted = part ? Intersect(*part, client) : client;
    if (IsEmpty(wanted))
        return;
    window.update.rectangle = BoundingBox(window.update.rectangle, wanted);
    window.update.erase = window.update.erase || erase;
    kernel::Wake(lock);
}

void Validate(Window& window) {
    window.update = Update{};
}

std::optional<MSG> NextPaintMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove, PaintKind kind) {
    for (const auto& window : TheDesktop(lock).z_order) {
        Update& update = window->update;
        if (window->queue.get() != &queue || !MustPaint(*window) ||
            !filter.Accepts(QS_PAINT, window->handle, WM_PAINT))
            continue;
        const bool requested = kind == PaintKind::kRequested;
        if (update.requested != requested || (!requested && update.again > kernel::Now()))
            continue;
        if (remove) {
            update.requested = false;
            update.again = kernel::Now() + kPaintAgainAfter;
        }
        MSG message{};
        message.hwnd = window->handle;
        message.message = WM_PAINT;
        message.time = MessageTime();
        message.pt = TheDesktop(lock).touch_position;
        return message;
    }
    return std::nullopt;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

BOOL InvalidateRect(HWND window, const RECT* part, BOOL erase) {
    const kernel::ApiCall call("InvalidateRect");
    if (call.Fails())
        return FALSE;
    kernel::KernelLock lock = kernel::LockKernel();
    if (window == NULL) {
        for (const auto& each : TheDesktop(lock).z_order)
            Invalidate(lock, *each, nullptr, true);
        return TRUE;
    }
    const auto target = RequireWindow(lock, window);
    if (!target)
        return FALSE;
    Invalidate(lock, *target, part, erase != FALSE);
    return TRUE;
}

BOOL ValidateRect(HWND window, const RECT* part) {
    const kernel::ApiCall call("ValidateRect");
    if (call.Fails())
        return FALSE;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = RequireWindow(lock, window);
    if (!target)
        return FALSE;
    Update& update = target->update;
    update.rectangle = part ? Without(update.rectangle, *part) : RECT{};
    if (IsEmpty(update.rectangle))
        Validate(*target);
    return TRUE;
}

BOOL GetUpdateRect(HWND window, LPRECT rectangle, BOOL erase) {
    const kernel::ApiCall call("GetUpdateRect");
    if (call.Fails())
        return FALSE;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = RequireWindow(lock, window);
    if (!target)
        return FALSE;
    const RECT update = target->update.rectangle;
    const bool erase_now =
        erase && target->update.erase && !IsEmpty(update) && IsOwn(lock, *target);
    lock.unlock();
    if (rectangle)
        *rectangle = update;
    if (erase_now && EraseBackground(window, update)) {
        lock.lock();
        target->update.erase = false;
    }
    return !IsEmpty(update);
}

BOOL UpdateWindow(HWND window) {
    const kernel::ApiCall call("UpdateWindow");
    if (call.Fails())
        return FALSE;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = RequireWindow(lock, window);
    if (!target)
        return FALSE;
    if (!MustPaint(*target))
        return TRUE;
    if (IsOwn(lock, *target)) {
        lock.unlock();
        CallProcedure(window, WM_PAINT, 0, 0);
    } else if (kernel::CurrentOptions().waiting_repaints) {
        RunOnAndWait(lock, *target->queue, [window] { PaintNow(window); });
    } else {
        target->update.requested = true;
        kernel::Wake(lock);
    }
    return TRUE;
}
