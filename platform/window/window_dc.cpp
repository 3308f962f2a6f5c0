#include "platform/window/window_dc.h"

#include <limits>

#include "platform/gdi/device_context.h"
#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"
#include "platform/window/paint.h"
#include "platform/window/procedure.h"
#include "platform/window/rectangle.h"

namespace platform::window {
namespace {

void DrawnOn(HWND window) {
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = FindWindowObject(lock, window);
        if (!target || !target->visible())
            return;
    }
    ScreenChanged();
}

}  // namespace

HDC OpenWindowDC(HWND window, const RECT& clip) {
    std::shared_ptr<gdi::Surface> surface;
    RECT visible{};
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto target = RequireWindow(lock, window);
        if (!target)
            return NULL;
        surface = target->surface;
        visible = Intersect(clip, {0, 0, target->width(), target->height()});
    }
    const HDC dc = gdi::CreateWindowDC(surface, visible, [window] { DrawnOn(window); });
    kernel::KernelLock lock = kernel::LockKernel();
    if (const auto target = RequireWindow(lock, window)) {
        target->device_contexts.push_back(dc);
        return dc;
    }
    lock.unlock();
    gdi::DestroyWindowDC(dc);
    return NULL;
}

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

bool EraseBackground(HWND window, const RECT& part) {
    const HDC dc = OpenWindowDC(window, part);
    if (!dc)
        return false;
    const bool erased = CallProcedure(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) != 0;
    CloseWindowDC(window, dc);
    return erased;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

namespace {

constexpr RECT kEverything{0, 0, std::numeric_limits<LONG>::max(),
                           std::numeric_limits<LONG>::max()};

}  // namespace

// Only windows have device contexts here, the screen has none.
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
