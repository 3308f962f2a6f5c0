#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/gdi/surface.h"
#include "platform/kernel/clock.h"

namespace platform::window {

struct MessageQueue;

struct WindowClass {
    std::wstring name;
    ATOM atom = 0;
    WNDCLASSW settings{};  // lpszClassName points at `name`
};

// The part of a window that must be painted: a bounding rectangle, possibly empty.
struct Update {
    RECT rectangle{};
    bool erase = false;
    // Another thread's UpdateWindow requested this paint: it comes before all other messages.
    bool requested = false;
    // A fetched WM_PAINT that did not validate comes again at this time.
    kernel::Time again{};
};

// A modal run of a dialog; outlives the dialog's window.
struct ModalRun {
    bool ended = false;
    INT_PTR result = 0;
    HWND disabled_owner = NULL;
};

// A top-level window; guarded by the kernel lock.
struct Window {
    HWND handle = NULL;
    std::shared_ptr<WindowClass> window_class;
    std::shared_ptr<MessageQueue> queue;  // of the thread that made it
    HWND owner = NULL;
    std::wstring title;
    DWORD style = 0;
    DWORD extended_style = 0;
    WNDPROC procedure = nullptr;
    HINSTANCE instance = NULL;
    std::vector<std::byte> extra;

    RECT rectangle{};  // on the screen; the client area is all of it
    std::shared_ptr<gdi::Surface> surface;
    Update update;
    std::vector<HDC> device_contexts;
    std::shared_ptr<ModalRun> modal_run;
    bool being_destroyed = false;

    bool visible() const { return (style & WS_VISIBLE) != 0; }
    bool enabled() const { return (style & WS_DISABLED) == 0; }
    bool topmost() const { return (extended_style & WS_EX_TOPMOST) != 0; }
    int width() const { return rectangle.right - rectangle.left; }
    int height() const { return rectangle.bottom - rectangle.top; }
};

// A window's pixels for its size, with the content of `previous` (may be null).
std::shared_ptr<gdi::Surface> MakeSurface(int width, int height, const gdi::Surface* previous);

}  // namespace platform::window
