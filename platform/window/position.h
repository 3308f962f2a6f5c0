#pragma once

#include <windows.h>

#include "platform/window/window.h"

namespace platform::window {

// Whether the coordinates fit the messages that carry them.
bool IsPlaceable(int x, int y, int width, int height);

// SetWindowPos. Takes effect at once for windows of all threads; does not wait for the messages to
// a window of another thread.
bool ChangePosition(const WINDOWPOS& wanted);

}  // namespace platform::window
