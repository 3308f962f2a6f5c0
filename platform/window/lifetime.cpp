#include "platform/window/lifetime.h"

#include <algorithm>

#include "platform/gdi/gdi.h"
#include "platform/kernel/api_call.h"
#include "platform/window/activation.h"
#include "platform/window/class_registry.h"
#include "platform/window/paint.h"
#include "platform/window/position.h"
#include "platform/window/procedure.h"
#include "platform/window/z_order.h"

namespace platform::window {

namespace {

// Styles that need a frame around the client area.
constexpr DWORD kFrameStyles = WS_CAPTION | WS_THICKFRAME | WS_VSCROLL | WS_HSCROLL;
constexpr DWORD kFrameExtendedStyles =
    WS_EX_DLGMODALFRAME | WS_EX_CLIENTEDGE | WS_EX_STATICEDGE | WS_EX_CAPTIONOKBTN;

bool IsSupported(const CREATESTRUCTW& wanted) {
    const DWORD style = static_cast<DWORD>(wanted.style);
    const bool child = (style & WS_CHILD) != 0 && (style & WS_POPUP) == 0;
    return !child && (style & kFrameStyles) == 0 && !wanted.hMenu &&
           (wanted.dwExStyle & kFrameExtendedStyles) == 0;
}

// CW_USEDEFAULT means the whole screen.
void FillDefaults(CREATESTRUCTW& wanted) {
    if (wanted.x == CW_USEDEFAULT) {
        wanted.x = 0;
        wanted.y = 0;
    }
    if (wanted.cx == CW_USEDEFAULT) {
        wanted.cx = kScreenWidth;
        wanted.cy = kScreenHeight;
    }
    wanted.cx = std::max(wanted.cx, 0);
    wanted.cy = std::max(wanted.cy, 0);
}

// The window with its handle, not visible; NULL with the last error set.
HWND Build(const CREATESTRUCTW& wanted) {
    auto surface = MakeSurface(wanted.cx, wanted.cy, nullptr);
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window_class = wanted.lpszClass ? FindClass(lock, wanted.lpszClass) : nullptr;
    if (!window_class) {
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
        return NULL;
    }
    if (wanted.hwndParent && !RequireWindow(lock, wanted.hwndParent))
        return NULL;

    auto window = std::make_shared<Window>();
    window->window_class = window_class;
    window->queue = CurrentQueue(lock);
    window->owner = wanted.hwndParent;
    if (wanted.lpszName)
        window->title = wanted.lpszName;
    window->style = static_cast<DWORD>(wanted.style) & ~WS_VISIBLE;
    window->extended_style = wanted.dwExStyle;
    window->procedure = window_class->settings.lpfnWndProc;
    window->instance = wanted.hInstance;
    window->extra.resize(static_cast<std::size_t>(window_class->settings.cbWndExtra));
    window->rectangle = {wanted.x, wanted.y, wanted.x + wanted.cx, wanted.y + wanted.cy};
    window->surface = std::move(surface);

    Desktop& desktop = TheDesktop(lock);
    window->handle = reinterpret_cast<HWND>(desktop.windows.Insert(window));
    desktop.z_order.push_back(window);
    MoveToTop(lock, *window, false);
    return window->handle;
}

bool Exists(HWND window) {
    kernel::KernelLock lock = kernel::LockKernel();
    return FindWindowObject(lock, window) != nullptr;
}

// Sends the messages of a creation; false when the window refused it.
bool SendCreation(HWND window, CREATESTRUCTW& wanted) {
    const LPARAM creation = reinterpret_cast<LPARAM>(&wanted);
    if (!CallProcedure(window, WM_NCCREATE, 0, creation)) {
        CallProcedure(window, WM_NCDESTROY, 0, 0);
        Discard(window);
        return false;
    }
    if (!Exists(window))
        return false;
    if (CallProcedure(window, WM_CREATE, 0, creation) == -1) {
        DestroyOwn(window);
        return false;
    }
    CallProcedure(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(wanted.cx, wanted.cy));
    CallProcedure(window, WM_MOVE, 0, MAKELPARAM(wanted.x, wanted.y));
    return Exists(window);
}

}  // namespace

HWND CreateTopLevel(const CREATESTRUCTW& request) {
    CREATESTRUCTW wanted = request;
    if (!IsSupported(wanted)) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return NULL;
    }
    FillDefaults(wanted);
    if (!IsPlaceable(wanted.x, wanted.y, wanted.cx, wanted.cy)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return NULL;
    }
    const HWND window = Build(wanted);
    if (!window || !SendCreation(window, wanted))
        return NULL;
    if ((static_cast<DWORD>(wanted.style) & WS_VISIBLE) != 0)
        ShowWindow(window, SW_SHOW);
    return Exists(window) ? window : NULL;
}

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

// Sends WM_NCCREATE, WM_CREATE, WM_SIZE and WM_MOVE.
HWND CreateWindowExW(DWORD extended_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID parameter) {
    const kernel::ApiCall call("CreateWindowExW");
    if (call.Fails())
        return NULL;
    CREATESTRUCTW wanted{};
    wanted.lpCreateParams = parameter;
    wanted.hInstance = instance;
    wanted.hMenu = menu;
    wanted.hwndParent = parent;
    wanted.cy = height;
    wanted.cx = width;
    wanted.y = y;
    wanted.x = x;
    wanted.style = static_cast<LONG>(style);
    wanted.lpszName = title;
    wanted.lpszClass = class_name;
    wanted.dwExStyle = extended_style;
    return CreateTopLevel(wanted);
}

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
