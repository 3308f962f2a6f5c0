#pragma once

#include "platform/window/desktop.h"

namespace platform::window {

// The stack of windows: the topmost ones before all others, owned windows before their owners. A
// window always moves together with the windows that it owns.

// To the top of its group (topmost or not); `with_owners` takes its owners along below it.
void MoveToTop(kernel::KernelLock& lock, Window& window, bool with_owners);

// Below all others; a topmost window no longer is.
void MoveToBottom(kernel::KernelLock& lock, Window& window, bool with_owners);

// Right below `other`, as far as groups and owners allow.
void MoveBehind(kernel::KernelLock& lock, Window& window, const Window& other);

// Makes a window topmost or not, and puts it at the top of its new group. One that stops being
// topmost takes its owners along.
void SetTopmost(kernel::KernelLock& lock, Window& window, bool topmost, bool with_owners);

}  // namespace platform::window
