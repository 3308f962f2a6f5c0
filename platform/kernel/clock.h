#pragma once

#include <chrono>

namespace platform::kernel {

// Time on the unit, counted from its power-on. It has nothing to do with the host's clocks: a
// simulated unit jumps from event to event, a free-running one may run N times as fast.
using Duration = std::chrono::microseconds;
using Time = std::chrono::microseconds;

inline constexpr Time kNever = Time::max();

// Any thread, with or without the kernel lock.
Time Now();

// The deadline of a time-out in milliseconds from now; INFINITE (0xFFFFFFFF) gives kNever.
Time DeadlineAfter(unsigned long milliseconds);

}  // namespace platform::kernel
