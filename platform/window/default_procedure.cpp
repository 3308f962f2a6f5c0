#include <cstring>

#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"
#include "platform/window/procedure.h"

using namespace platform;
using namespace platform::window;

namespace {

// A class's brush may be a system colour's number plus one, with or without the flag that Windows
// CE has in those numbers.
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
    return brush && is_color ? GetSysColorBrush(static_cast<int>(value) - 1) : brush;
}

LRESULT FillBackground(HWND window, HDC dc) {
    const HBRUSH brush = ClassBrush(window);
    RECT client{};
    if (!brush || !GetClientRect(window, &client))
        return FALSE;
    return FillRect(dc, &client, brush) != 0;
}

LRESULT SetTitle(HWND handle, const WCHAR* text) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return FALSE;
    window->title = text ? text : L"";
    return TRUE;
}

LRESULT CopyTitle(HWND handle, WCHAR* buffer, WPARAM size) {
    if (!buffer || size == 0)
        return 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return 0;
    const std::size_t copied = window->title.copy(buffer, size - 1);
    buffer[copied] = L'\0';
    return static_cast<LRESULT>(copied);
}

LRESULT TitleLength(HWND handle) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    return window ? static_cast<LRESULT>(window->title.size()) : 0;
}

LRESULT TellSizeAndPlace(HWND window, const WINDOWPOS& position) {
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
        case WM_SETTEXT:
            return SetTitle(window, reinterpret_cast<const WCHAR*>(lparam));
        case WM_GETTEXT:
            return CopyTitle(window, reinterpret_cast<WCHAR*>(lparam), wparam);
        case WM_GETTEXTLENGTH:
            return TitleLength(window);
        case WM_WINDOWPOSCHANGED:
            return lparam ? TellSizeAndPlace(window, *reinterpret_cast<WINDOWPOS*>(lparam)) : 0;
        default:
            return 0;
    }
}

LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wparam,
                        LPARAM lparam) {
    const kernel::ApiCall call;
    if (!procedure)
        return 0;
    const kernel::ProgramCode program_code;
    return procedure(window, message, wparam, lparam);
}
