#pragma once

#include <windows.h>

#include "platform/board.h"
#include "platform/window/desktop.h"

namespace platform::window {

// Windows of other processes have handles of a table of their own: apart from finding them,
// bringing them forward and asking whether they exist, nothing can be done to them.

// The same handle for the same window every time.
HWND NeighbourHandle(kernel::KernelLock& lock, NeighbourWindow window);

// The window behind such a handle; 0 when it is none.
NeighbourWindow NeighbourBehind(kernel::KernelLock& lock, HWND handle);

// Its handle is stale from now on.
void ForgetNeighbour(kernel::KernelLock& lock, HWND handle);

}  // namespace platform::window
