#pragma once

#include <windows.h>

namespace platform::window {

// A device context on a part of a window's client area; NULL with the last error set when there is
// no such window. It goes with the window at the latest. Without the kernel lock.
HDC OpenWindowDC(HWND window, const RECT& clip);

// False when it is none of that window's.
bool CloseWindowDC(HWND window, HDC dc);

// Has a window of the calling thread erase that part of itself. False when it did not.
bool EraseBackground(HWND window, const RECT& part);

}  // namespace platform::window
