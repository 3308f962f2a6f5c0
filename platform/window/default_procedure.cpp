#include <cstring>

#include "platform/gdi/drawing_object.h"
#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"
#include "platform/window/procedure.h"

using namespace platform;
using namespace platform::window;

namespace {

HBRUSH SystemColorBrush(int index) {
    const auto lock = gdi::LockGdi();
    return static_cast<HBRUSH>(gdi::SystemColorBrush(index));
}

// A class's brush may be a system colour's index plus one, with or without Windows CE's index flag.
HBRUSH ClassBrush(HWND handle) {
    HBRUSH brush = NULL;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        if (const auto window = FindWindowObject(lock, handle))
            brush = window->window_class->settings.hbrBackground;
    }
    constexpr UINT_PTR kHighestColor = 0x1F;
    const UINT_PTR value = reinterpret_cast<UINT_PTR>(brush);
    const bool is_color = (value & ~UINT_PTR{SYS_COLOR_INDEX_FLAG}) <= kHighestColor;
    return brush && is_color ? SystemColorBrush(static_cast<int>(value) - 1) : brush;
}

LRESULT FillBackground(HWND window, HDC dc) {
    const HBRUSH brush = ClassBrush(window);
    RECT client{};
    if (!brush || !GetClientRect(window, &client))
        return FALSE;
    return FillRect(dc, &client, brush) != 0;
}

LRESULT NotifyMoveAndSize(HWND window, const WINDOWPOS& position) {
    if ((position.flags & SWP_NOMOVE) == 0)
        CallProcedure(window, WM_MOVE, 0, MAKELPARAM(position.x, position.y));
    if ((position.flags & SWP_NOSIZE) == 0)
        CallProcedure(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(position.cx, position.cy));
    return 0;
}

}  // namespace

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call;
    switch (message) {
        case WM_NCCREATE:
            return TRUE;
        case WM_CLOSE:
            DestroyWindow(window);
            return 0;
        case WM_PAINT: {
            PAINTSTRUCT paint{};
            if (BeginPaint(window, &paint))
                EndPaint(window, &paint);
            return 0;
        }
        case WM_ERASEBKGND:
            return FillBackground(window, reinterpret_cast<HDC>(wparam));
        case WM_WINDOWPOSCHANGED:
            return lparam ? NotifyMoveAndSize(window, *reinterpret_cast<WINDOWPOS*>(lparam)) : 0;
        default:
            return 0;
    }
}
