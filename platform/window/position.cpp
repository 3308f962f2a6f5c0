#include "platform/window/position.h"

#include "platform/kernel/api_call.h"
#include "platform/window/activation.h"
#include "platform/window/desktop.h"
#include "platform/window/paint.h"
#include "platform/window/procedure.h"
#include "platform/window/rectangle.h"
#include "platform/window/z_order.h"

namespace platform::window {
namespace {

constexpr int kFarthest = 32767;
constexpr int kLargest = 4096;

constexpr UINT kNoChange = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER;

// Puts the window where it is wanted in the stack; false when hwndInsertAfter is no window.
bool Restack(kernel::KernelLock& lock, Window& window, const WINDOWPOS& wanted) {
    const bool with_owners = (wanted.flags & SWP_NOOWNERZORDER) == 0;
    if (wanted.hwndInsertAfter == HWND_TOP) {
        MoveToTop(lock, window, with_owners);
    } else if (wanted.hwndInsertAfter == HWND_BOTTOM) {
        MoveToBottom(lock, window, with_owners);
    } else if (wanted.hwndInsertAfter == HWND_TOPMOST) {
        SetTopmost(lock, window, true, with_owners);
    } else if (wanted.hwndInsertAfter == HWND_NOTOPMOST) {
        // Of no effect on a window that is not topmost, its place included.
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

void InvalidateChange(kernel::KernelLock& lock, Window& window, const WINDOWPOS& change) {
    const bool resized = (change.flags & SWP_NOSIZE) == 0;
    const RECT client{0, 0, window.width(), window.height()};
    window.update.rectangle = Intersect(window.update.rectangle, client);
    if ((change.flags & SWP_SHOWWINDOW) != 0 || (resized && (change.flags & SWP_NOREDRAW) == 0))
        Invalidate(lock, window, nullptr, true);
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
        MoveAndSize(*window, change);
        seen = window->visible();
        ShowOrHide(*window, change);
        seen = seen || window->visible();
        activates = Activates(change, *window);
        if ((change.flags & SWP_NOSIZE) == 0)
            window->surface = MakeSurface(change.cx, change.cy, window->surface.get());
        InvalidateChange(lock, *window, change);
    }
    const UINT shown_or_hidden = change.flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW);
    const bool changed = (change.flags & kNoChange) != kNoChange || shown_or_hidden != 0;
    if (changed && seen)
        ScreenChanged();
    if (changed)
        NotifyPosition(change);
    if ((shown_or_hidden & SWP_HIDEWINDOW) != 0)
        LeaveActivation(change.hwnd);
    if (activates)
        BringForward(change.hwnd, WA_ACTIVE);
    return true;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

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
