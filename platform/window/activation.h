#pragma once

#include <windows.h>

namespace platform::window {

// One window of the unit is in the foreground; it is the active window of its thread and usually
// has that thread's focus. A thread whose window lost the foreground has no active window.
// All without the kernel lock, on any thread; messages to a window of another thread follow there.

// Raises a window with its owners and the windows it owns, and puts it in the foreground if it is
// visible. `how` is WA_ACTIVE or WA_CLICKACTIVE.
void BringForward(HWND window, UINT how);

// A press came for that window.
void ActivateTouched(HWND window);

// The window is hidden or about to be destroyed: another one takes its place in the foreground.
void LeaveActivation(HWND window);

// The same without a message to the window itself, whose thread ends.
void PassForegroundOn(HWND window);

// The window, disabled, can have the focus no longer.
void DropFocus(HWND window);

}  // namespace platform::window
