#include "platform/window/position.h"

#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"
#include "platform/window/activation.h"
#include "platform/window/desktop.h"
#include "platform/window/paint.h"
#include "platform/window/procedure.h"
#include "platform/window/z_order.h"

namespace platform::window {
namespace {

constexpr int kFarthest = 32767;
constexpr int kLargest = 4096;

constexpr UINT kNoChange = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER;

// Moves the window in the z-order; false when hwndInsertAfter is no window.
bool Restack(kernel::KernelLock& lock, Window& window, const WINDOWPOS& wanted) {
    const bool with_owners = (wanted.flags & SWP_NOOWNERZORDER) == 0;
    if (wanted.hwndInsertAfter == HWND_TOP) {
        MoveToTop(lock, window, with_owners);
    } else if (wanted.hwndInsertAfter == HWND_BOTTOM) {
        MoveToBottom(lock, window, with_owners);
    } else if (wanted.hwndInsertAfter == HWND_TOPMOST) {
        SetTopmost(lock, window, true, with_owners);
    } else if (wanted.hwndInsertAfter == HWND_NOTOPMOST) {
        // Does not move a window that is not topmost.
        if (window.topmost())
            SetTopmost(lock, window, false, with_owners);
    } else if (const auto other = RequireWindow(lock, wanted.hwndInsertAfter)) {
        MoveBehind(lock, window, *other);
    } else {
        return false;
    }
    return true;
}

void MoveAndSize(Window& window, WINDOWPOS& change) {
    if ((change.flags & SWP_NOMOVE) != 0) {
        change.x = window.rectangle.left;
        change.y = window.rectangle.top;
    }
    if ((change.flags & SWP_NOSIZE) != 0) {
        change.cx = window.width();
        change.cy = window.height();
    }
    if (change.x == window.rectangle.left && change.y == window.rectangle.top)
        change.flags |= SWP_NOMOVE;
    if (change.cx == window.width() && change.cy == window.height())
        change.flags |= SWP_NOSIZE;
    window.rectangle = {change.x, change.y, change.x + change.cx, change.y + change.cy};
}

void ShowOrHide(Window& window, WINDOWPOS& change) {
    if ((change.flags & SWP_SHOWWINDOW) != 0 && window.visible())
        change.flags &= ~SWP_SHOWWINDOW;
    if ((change.flags & SWP_HIDEWINDOW) != 0 && !window.visible())
        change.flags &= ~SWP_HIDEWINDOW;
    if ((change.flags & SWP_SHOWWINDOW) != 0)
        window.style |= WS_VISIBLE;
    if ((change.flags & SWP_HIDEWINDOW) != 0) {
        window.style &= ~WS_VISIBLE;
        Validate(window);
    }
}

// A window that is shown must paint all of it; a resized one what it gained, or all of it when its
// class says so.
void InvalidateChange(kernel::KernelLock& lock, Window& window, const WINDOWPOS& change,
                      const SIZE& previous) {
    const RECT client{0, 0, window.width(), window.height()};
    window.update.rectangle = gdi::Intersect(window.update.rectangle, client);
    if ((change.flags & SWP_SHOWWINDOW) != 0) {
        Invalidate(lock, window, nullptr, true);
        return;
    }
    if ((change.flags & SWP_NOREDRAW) != 0)
        return;
    const UINT class_style = window.window_class->settings.style;
    if ((change.cx != previous.cx && (class_style & CS_HREDRAW) != 0) ||
        (change.cy != previous.cy && (class_style & CS_VREDRAW) != 0)) {
        Invalidate(lock, window, nullptr, true);
        return;
    }
    const RECT gained[] = {{previous.cx, 0, change.cx, change.cy},
                           {0, previous.cy, change.cx, change.cy}};
    for (const RECT& part : gained)
        Invalidate(lock, window, &part, true);
}

bool Activates(const WINDOWPOS& wanted, const Window& window) {
    return (wanted.flags & (SWP_NOACTIVATE | SWP_HIDEWINDOW)) == 0 && window.visible() &&
           (wanted.hwndInsertAfter != HWND_BOTTOM || (wanted.flags & SWP_NOZORDER) != 0) &&
           (window.extended_style & WS_EX_NOACTIVATE) == 0;
}

}  // namespace

bool IsPlaceable(int x, int y, int width, int height) {
    return x >= -kFarthest && x <= kFarthest && y >= -kFarthest && y <= kFarthest &&
           width <= kLargest && height <= kLargest;
}

bool ChangePosition(const WINDOWPOS& wanted) {
    WINDOWPOS change = wanted;
    bool seen = false;
    bool activates = false;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, change.hwnd);
        if (!window)
            return false;
        if (window->being_destroyed)
            change.flags &= ~SWP_SHOWWINDOW;
        if ((change.flags & SWP_NOZORDER) == 0 && !Restack(lock, *window, change))
            return false;
        const SIZE previous{window->width(), window->height()};
        MoveAndSize(*window, change);
        seen = window->visible();
        ShowOrHide(*window, change);
        seen = seen || window->visible();
        activates = Activates(change, *window);
        if ((change.flags & SWP_NOSIZE) == 0)
            window->surface = MakeSurface(change.cx, change.cy, window->surface.get());
        InvalidateChange(lock, *window, change, previous);
    }
    const UINT shown_or_hidden = change.flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW);
    const bool changed = (change.flags & kNoChange) != kNoChange || shown_or_hidden != 0;
    if (changed && seen)
        ScreenChanged();
    if (activates)
        BringForward(change.hwnd, WA_ACTIVE);
    if (changed)
        NotifyPosition(change);
    if ((shown_or_hidden & SWP_HIDEWINDOW) != 0)
        LeaveActivation(change.hwnd);
    return true;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

namespace {

// The SetWindowPos flags of a show command; 0 when it is not supported.
UINT FlagsOf(int command) {
    constexpr UINT kStay = SWP_NOMOVE | SWP_NOSIZE;
    switch (command) {
        case SW_HIDE:
            return kStay | SWP_NOZORDER | SWP_NOACTIVATE | SWP_HIDEWINDOW;
        case SW_SHOW:
        case SW_SHOWNORMAL:
        case SW_RESTORE:
            return kStay | SWP_SHOWWINDOW;
        case SW_SHOWNA:
        case SW_SHOWNOACTIVATE:
            return kStay | SWP_NOACTIVATE | SWP_NOZORDER | SWP_SHOWWINDOW;
        case SW_MAXIMIZE:
        case SW_SHOWMAXIMIZED:
            return SWP_SHOWWINDOW;
        default:
            return 0;
    }
}

}  // namespace

BOOL SetWindowPos(HWND window, HWND insert_after, int x, int y, int width, int height, UINT flags) {
    const kernel::ApiCall call("SetWindowPos");
    if (call.Fails())
        return FALSE;
    const bool moves = (flags & SWP_NOMOVE) == 0;
    const bool sizes = (flags & SWP_NOSIZE) == 0;
    width = sizes ? std::max(width, 0) : 0;
    height = sizes ? std::max(height, 0) : 0;
    const bool placeable = IsPlaceable(moves ? x : 0, moves ? y : 0, width, height);
    const bool contradictory = (flags & SWP_SHOWWINDOW) != 0 && (flags & SWP_HIDEWINDOW) != 0;
    if (!placeable || contradictory) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return ChangePosition({window, insert_after, x, y, width, height, flags});
}

BOOL ShowWindow(HWND handle, int command) {
    const kernel::ApiCall call("ShowWindow");
    if (call.Fails())
        return FALSE;
    const UINT flags = FlagsOf(command);
    bool was_visible = false;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, handle);
        if (!window)
            return FALSE;
        was_visible = window->visible();
    }
    if (flags == 0) {
        SetLastError(command == SW_MINIMIZE ? ERROR_CALL_NOT_IMPLEMENTED
                                            : ERROR_INVALID_SHOWWIN_COMMAND);
        return was_visible;
    }
    const bool shows = (flags & SWP_SHOWWINDOW) != 0;
    if (shows != was_visible)
        Notify(handle, WM_SHOWWINDOW, shows, 0);
    ChangePosition({handle, HWND_TOP, 0, 0, kScreenWidth, kScreenHeight, flags});
    return was_visible;
}
