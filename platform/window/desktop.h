#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/board.h"
#include "platform/kernel/handle_table.h"
#include "platform/kernel/kernel_lock.h"
#include "platform/window/message_queue.h"
#include "platform/window/screen.h"
#include "platform/window/window.h"

namespace platform::window {

// A touch that no thread has fetched yet. The fetch decides which window it is for.
struct TouchInput {
    Touch touch;
    POINT position;
    DWORD time;
};

// The state of the window manager; guarded by the kernel lock.
struct Desktop {
    kernel::HandleTable<Window> windows{kernel::kWindows};
    // Apart from finding them and bringing them forward, nothing can be done to these.
    kernel::HandleTable<OtherProcessWindow> other_process_windows{kernel::kOtherProcessWindows};
    std::vector<std::shared_ptr<Window>> z_order;  // topmost first
    std::vector<std::shared_ptr<WindowClass>> classes;
    std::deque<TouchInput> touches;
    POINT touch_position{};
    HWND foreground = NULL;
    std::function<void(UINT, WPARAM, LPARAM)> broadcast_observer;
    ATOM last_atom = 0;
    UINT_PTR last_timer = 0;
};

// The lock parameter ensures that the caller holds it.
Desktop& TheDesktop(kernel::KernelLock& lock);

// The window behind a handle, or null.
std::shared_ptr<Window> FindWindowObject(kernel::KernelLock& lock, HWND handle);

// The same; a handle of no window sets ERROR_INVALID_WINDOW_HANDLE.
std::shared_ptr<Window> RequireWindow(kernel::KernelLock& lock, HWND handle);

// Whether the calling thread made the window.
bool IsOwn(kernel::KernelLock& lock, const Window& window);

// Reports to the board that the picture changed. Without locks.
void ScreenChanged();

}  // namespace platform::window
