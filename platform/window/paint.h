#pragma once

#include <windows.h>

#include "platform/window/desktop.h"

namespace platform::window {

// Adds a part of a window (null: all of it) to its update rectangle. Does nothing for a hidden
// window: showing it invalidates all of it.
void Invalidate(kernel::KernelLock& lock, Window& window, const RECT* part, bool erase);

// Empties the update rectangle and drops any request for a paint.
void Validate(Window& window);

}  // namespace platform::window
