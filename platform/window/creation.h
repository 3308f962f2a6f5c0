#pragma once

#include <windows.h>

namespace platform::window {

// CreateWindowExW for a template that asks for no more than a client area.
HWND CreateTopLevel(const CREATESTRUCTW& wanted);

}  // namespace platform::window
