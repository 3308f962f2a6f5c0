#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "platform/kernel/clock.h"
#include "platform/kernel/object.h"

namespace platform::kernel {

// Waits for the first of `objects` that is signalled (the lowest index when several are), or until
// `interrupted` (may be empty) holds, or the deadline. Returns WAIT_OBJECT_0 + index,
// WAIT_ABANDONED_0 + index, WAIT_OBJECT_0 + count when interrupted, or WAIT_TIMEOUT.
DWORD WaitForAny(KernelLock& lock, std::span<const std::shared_ptr<Object>> objects,
                 const std::function<bool()>& interrupted, Time deadline);

// The objects behind `count` handles; false with the last error set when one is no handle, not
// waitable, or the count is not 1 to MAXIMUM_WAIT_OBJECTS (0 is allowed when `allow_none`).
bool CollectWaitObjects(const HANDLE* handles, DWORD count, bool allow_none,
                        std::vector<std::shared_ptr<Object>>& objects);

}  // namespace platform::kernel
