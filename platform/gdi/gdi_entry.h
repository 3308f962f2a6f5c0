#pragma once

#include <mutex>

#include "platform/gdi/surface.h"
#include "platform/kernel/scheduler.h"

namespace platform::gdi {

// The way into every call of the API that works on drawing objects.
inline std::unique_lock<std::mutex> EnterGdi() {
    kernel::SchedulingPoint();
    return LockGdi();
}

}  // namespace platform::gdi
