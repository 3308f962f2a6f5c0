#include "platform/window/paint.h"

#include <limits>

#include "platform/gdi/gdi.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/procedure.h"
#include "platform/window/retrieval.h"

namespace platform::window {
namespace {

// A window that never validates gets WM_PAINT again and again, but not more often than this: the
// simulated clock must be able to advance.
constexpr kernel::Duration kPaintAgainAfter = std::chrono::milliseconds(1);

constexpr RECT kEverything{0, 0, std::numeric_limits<LONG>::max(),
                           std::numeric_limits<LONG>::max()};

bool MustPaint(const Window& window) {
    return window.visible() && !gdi::IsEmpty(window.update.rectangle);
}

// On the window's thread. A window that was painted or hidden meanwhile needs no paint.
void PaintNow(HWND window) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = FindWindowObject(lock, window);
    const bool must_paint = target && MustPaint(*target);
    lock.unlock();
    if (must_paint)
        CallProcedure(window, WM_PAINT, 0, 0);
}

void ReportDrawing(HWND window) {
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = FindWindowObject(lock, window);
        if (!target || !target->visible())
            return;
    }
    ScreenChanged();
}

// A device context on a part of a window's client area; NULL with the last error set when there is
// no such window. Destroyed with the window at the latest.
HDC OpenWindowDC(HWND window, const RECT& clip) {
    std::shared_ptr<gdi::Surface> surface;
    RECT visible{};
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = RequireWindow(lock, window);
        if (!target)
            return NULL;
        surface = target->surface;
        visible = gdi::Intersect(clip, {0, 0, target->width(), target->height()});
    }
    const HDC dc = gdi::CreateWindowDC(surface, visible, [window] { ReportDrawing(window); });
    kernel::KernelLock lock = kernel::LockKernel();
    if (const auto target = RequireWindow(lock, window)) {
        target->device_contexts.push_back(dc);
        return dc;
    }
    lock.unlock();
    gdi::DestroyWindowDC(dc);
    return NULL;
}

// False when the window has no such device context.
bool CloseWindowDC(HWND window, HDC dc) {
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = RequireWindow(lock, window);
        if (!target)
            return false;
        if (std::erase(target->device_contexts, dc) == 0) {
            SetLastError(ERROR_INVALID_HANDLE);
            return false;
        }
    }
    return gdi::DestroyWindowDC(dc);
}

}  // namespace

void Invalidate(kernel::KernelLock& lock, Window& window, const RECT* part, bool erase) {
    if (!window.visible())
        return;
    const RECT client{0, 0, window.width(), window.height()};
    const RECT wanted = part ? gdi::Intersect(*part, client) : client;
    if (gdi::IsEmpty(wanted))
        return;
    window.update.rectangle = gdi::BoundingBox(window.update.rectangle, wanted);
    window.update.erase = window.update.erase || erase;
    kernel::Wake(lock);
}

void Validate(Window& window) {
    window.update = Update{};
}

std::optional<MSG> NextPaintMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove, PaintKind kind) {
    const bool requested = kind == PaintKind::kRequested;
    for (const auto& window : TheDesktop(lock).z_order) {
        Update& update = window->update;
        if (window->queue.get() != &queue || !MustPaint(*window) ||
            !filter.Accepts(QS_PAINT, window->handle, WM_PAINT))
            continue;
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
        RunOnAndWait(lock, *target, [window] { PaintNow(window); });
    } else {
        target->update.requested = true;
        kernel::Wake(lock);
    }
    return TRUE;
}

// Only windows have device contexts here; the screen has none.
HDC GetDC(HWND window) {
    const kernel::ApiCall call("GetDC");
    if (call.Fails())
        return NULL;
    return OpenWindowDC(window, kEverything);
}

int ReleaseDC(HWND window, HDC dc) {
    const kernel::ApiCall call("ReleaseDC");
    if (call.Fails())
        return 0;
    return CloseWindowDC(window, dc) ? 1 : 0;
}

HDC BeginPaint(HWND window, LPPAINTSTRUCT paint) {
    const kernel::ApiCall call("BeginPaint");
    if (call.Fails())
        return NULL;
    if (!paint) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return NULL;
    }
    *paint = PAINTSTRUCT{};
    Update update;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = RequireWindow(lock, window);
        if (!target)
            return NULL;
        update = target->update;
        Validate(*target);
    }
    const HDC dc = OpenWindowDC(window, update.rectangle);
    if (!dc)
        return NULL;
    paint->hdc = dc;
    paint->rcPaint = update.rectangle;
    if (update.erase)
        paint->fErase = CallProcedure(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) == 0;
    return dc;
}

BOOL EndPaint(HWND window, const PAINTSTRUCT* paint) {
    const kernel::ApiCall call("EndPaint");
    if (call.Fails())
        return FALSE;
    if (!paint) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return CloseWindowDC(window, paint->hdc);
}
