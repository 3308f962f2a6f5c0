#pragma once

#include <windows.h>

namespace platform::window {

// DestroyWindow for a window of the calling thread: hides it, destroys the windows it owns, sends
// WM_DESTROY and WM_NCDESTROY. Does nothing for a window that is being destroyed already.
void DestroyOwn(HWND window);

// Takes a window away without a message to it; windows that it owns lose their owner.
void Discard(HWND window);

// What a thread's end means for its windows: they go without messages (the code behind them is
// gone), windows of other threads that they own are destroyed there, and its queue ends.
void EndThread();

}  // namespace platform::window
