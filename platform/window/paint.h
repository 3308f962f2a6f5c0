#pragma once

#include <windows.h>

#include "platform/window/desktop.h"

namespace platform::window {

// Adds a part of a window (null: all of it) to what must be painted. A hidden window has nothing to
// paint: it is painted whole when it is shown.
void Invalidate(kernel::KernelLock& lock, Window& window, const RECT* part, bool erase);

// Nothing must be painted any more.
void Validate(Window& window);

}  // namespace platform::window
