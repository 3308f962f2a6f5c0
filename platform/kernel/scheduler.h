#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/kernel/clock.h"
#include "platform/kernel/kernel_lock.h"
#include "platform/kernel/thread.h"

namespace platform::kernel {

using EventId = std::uint64_t;
using Action = std::function<void()>;

// The one place where threads block and time passes. The two ways to run implement it:
// free_scheduler.cpp and simulated_scheduler.cpp.
class Scheduler {
  public:
    virtual ~Scheduler() = default;

    virtual Time Now() const = 0;

    // See JumpClock.
    virtual void Jump(KernelLock& lock, Duration forward) = 0;

    // Blocks the calling thread, which is not the hardware's, until ready() holds or the deadline
    // has come, and returns the last answer of ready(). The lock is let go of while the thread is
    // blocked; ready() is asked with the lock held, on any thread.
    virtual bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline) = 0;

    // Some state that a blocked thread's ready() looks at has changed.
    virtual void Wake(KernelLock& lock) = 0;

    // A place where another thread may run before the calling one goes on.
    virtual void SchedulingPoint() = 0;

    virtual void Adopt(KernelLock& lock, Thread& thread) = 0;
    // The body of a new thread's host thread calls these around its entry.
    virtual void Enter(KernelLock& lock, Thread& thread) = 0;
    virtual void Leave(KernelLock& lock, Thread& thread) = 0;

    // Actions of the hardware: run on the hardware's thread, in order of time, without the lock.
    virtual EventId At(KernelLock& lock, Time when, Action action) = 0;
    virtual void Cancel(KernelLock& lock, EventId id) = 0;

    // Runs the hardware on the calling thread until done(), which is asked after every action.
    // False when nothing can ever happen again (a simulated unit with every thread blocked).
    virtual bool RunHardware(const std::function<bool()>& done) = 0;

    // For a hardware thread with an event loop of its own (free running only): runs what is due and
    // returns when the next action is.
    virtual Time RunDueActions() = 0;
};

// The functions below are what the rest of the platform and the unit call.

// See Scheduler::Block. Any thread of the platform; on the hardware's a wait runs the hardware.
bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline);
void Wake(KernelLock& lock);
void SchedulingPoint();

// Runs `action` on the hardware's thread at that time (at once, in its turn, when it has passed).
// Any thread. The forms without a lock take it.
EventId At(Time when, Action action);
EventId At(KernelLock& lock, Time when, Action action);
EventId After(Duration delay, Action action);
// An action that has run already, or an unknown id, is ignored.
void Cancel(EventId id);

bool RunHardware(const std::function<bool()>& done);
Time RunDueActions();

// Puts the unit's clock forward: what would have come meanwhile is all overdue at once. Actions run
// in order of their time, each at the new one; waits and sleeps whose end has passed time out,
// simulated threads of one priority in order of those ends. False, and nothing is done, for a jump
// back (the clock of a unit never runs backwards) or one of more than kLongestJump. Hardware's
// thread.
inline constexpr Duration kLongestJump = std::chrono::hours(24 * 1000);
bool JumpClock(Duration forward);

// Called (any thread, kernel lock held) when an action was added or the screen changed: wakes an
// event loop that waits outside the kernel. Set before threads start.
void SetHardwareWaker(std::function<void()> waker);

}  // namespace platform::kernel
