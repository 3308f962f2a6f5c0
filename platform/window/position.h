#pragma once

#include <windows.h>

#include "platform/window/window.h"

namespace platform::window {

// Whether a window can be there: its coordinates fit the messages that carry them.
bool IsPlaceable(int x, int y, int width, int height);

// SetWindowPos. Works at once for windows of all threads; what it tells a window of another thread
// follows, without a wait.
bool ChangePosition(const WINDOWPOS& wanted);

}  // namespace platform::window
