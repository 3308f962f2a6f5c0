#pragma once

#include <mutex>

namespace platform::kernel {

// The one lock that guards kernel objects, windows and message queues. Where a function takes a
// KernelLock&, the caller holds it; where it takes none, the caller must not hold it.
using KernelLock = std::unique_lock<std::mutex>;

KernelLock LockKernel();

}  // namespace platform::kernel
