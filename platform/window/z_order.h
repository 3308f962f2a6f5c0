#pragma once

#include "platform/window/desktop.h"

namespace platform::window {

// The z-order: topmost windows above all others, owned windows above their owners. A window always
// moves together with the windows that it owns.

// To the top of its group (topmost or not); with `with_owners` its owners follow below it.
void MoveToTop(kernel::KernelLock& lock, Window& window, bool with_owners);

// Below all others; a topmost window loses that property.
void MoveToBottom(kernel::KernelLock& lock, Window& window, bool with_owners);

// Right below `other`, as far as groups and owners allow.
void MoveBehind(kernel::KernelLock& lock, Window& window, const Window& other);

// Makes a window topmost or not, and moves it to the top of its new group. The owners of a window
// that stops being topmost follow.
void SetTopmost(kernel::KernelLock& lock, Window& window, bool topmost, bool with_owners);

}  // namespace platform::window
