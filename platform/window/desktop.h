#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <map>
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

// A touch that no thread has fetched yet. Which window it is for is decided when it is fetched.
struct TouchInput {
    Touch touch;
    POINT position;
    DWORD time;
};

// Everything the window manager holds; guarded by the kernel lock.
struct Desktop {
    kernel::HandleTable<Window> windows{kernel::kWindows};
    kernel::HandleTable<NeighbourWindow> neighbours{kernel::kNeighbourWindows};
    std::vector<std::shared_ptr<Window>> z_order;  // topmost first
    std::vector<std::shared_ptr<WindowClass>> classes;
    std::map<DWORD, std::shared_ptr<MessageQueue>> queues;  // by thread
    std::deque<TouchInput> touches;
    POINT touch_position{};
    HWND foreground = NULL;
    std::function<void(UINT, WPARAM, LPARAM)> broadcast_observer;
    ATOM last_atom = 0;
    UINT_PTR last_timer = 0;
};

// The lock is the proof that the caller may look.
Desktop& TheDesktop(kernel::KernelLock& lock);

// The window behind a handle, or null.
std::shared_ptr<Window> FindWindowObject(kernel::KernelLock& lock, HWND handle);

// The same; a handle of no window sets ERROR_INVALID_WINDOW_HANDLE.
std::shared_ptr<Window> RequireWindow(kernel::KernelLock& lock, HWND handle);

// Whether the calling thread made the window.
bool IsOwn(kernel::KernelLock& lock, const Window& window);

// Tells the board that the picture changed. Without locks.
void ScreenChanged();

}  // namespace platform::window
