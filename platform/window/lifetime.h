#pragma once

#include <windows.h>

namespace platform::window {

// CreateWindowExW for a window without a frame.
HWND CreateTopLevel(const CREATESTRUCTW& wanted);

// DestroyWindow for a window of the calling thread: hides it, destroys the windows it owns, sends
// WM_DESTROY and WM_NCDESTROY. Does nothing for a window that is being destroyed already.
void DestroyOwn(HWND window);

// Removes a window without a message to it; windows that it owns lose their owner.
void Discard(HWND window);

// Removes the calling thread's windows at its end: without messages, as the code behind them is
// gone. Windows of other threads that they own are destroyed there. Ends the thread's queue.
void EndThread();

}  // namespace platform::window
