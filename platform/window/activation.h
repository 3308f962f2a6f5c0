#pragma once

#include <windows.h>

namespace platform::window {

// One window of the unit is in the foreground; it is the active window of its thread and, when it
// is enabled, has that thread's focus. A thread whose window lost the foreground has no active
// window. All on any thread, without the kernel lock; messages to a window of another thread follow
// on that thread.

// Raises a window with its owners and the windows it owns, and puts it in the foreground if it is
// visible. `how` is WA_ACTIVE or WA_CLICKACTIVE.
void BringForward(HWND window, UINT how);

// Activates a window that was pressed.
void ActivateTouched(HWND window);

// For a window that is hidden or about to be destroyed: another window takes over the foreground.
void LeaveActivation(HWND window);

// The same without a message to the window, whose thread ends.
void PassForegroundOn(HWND window);

// Removes the focus from a disabled window.
void DropFocus(HWND window);

}  // namespace platform::window
