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

    // See PauseClock, ResumeClock and SetClockSpeed.
    virtual bool Pause() = 0;
    virtual bool Resume(KernelLock& lock) = 0;
    virtual bool SetSpeed(KernelLock& lock, double speed) = 0;
    virtual bool paused() const = 0;
    virtual double speed() const = 0;

    // Blocks the calling thread, which is not the host thread, until ready() holds or the deadline
    // has come, and returns the last result of ready(). Releases the lock while the thread is
    // blocked; ready() is called with the lock held, on any thread.
    virtual bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline) = 0;

    // Called after a change of state that a blocked thread's ready() reads.
    virtual void Wake(KernelLock& lock) = 0;

    // Another thread may run here before the calling thread continues.
    virtual void SchedulingPoint() = 0;

    virtual void Adopt(KernelLock& lock, Thread& thread) = 0;
    // A new thread calls these around its entry.
    virtual void Enter(KernelLock& lock, Thread& thread) = 0;
    virtual void Leave(KernelLock& lock, Thread& thread) = 0;

    // Actions run on the host thread, in order of time, without the lock.
    virtual EventId At(KernelLock& lock, Time when, Action action) = 0;
    virtual void Cancel(KernelLock& lock, EventId id) = 0;

    // Runs the host thread's actions on the calling thread until done(), which is called after
    // every action. False when nothing can ever happen again (a simulated unit with every thread
    // blocked).
    virtual bool RunHostThread(const std::function<bool()>& done) = 0;

    // For a host thread with an event loop of its own (free running only): runs the due actions and
    // returns the time of the next one.
    virtual Time RunDueActions() = 0;
};

// The functions below are for the rest of the platform and the unit.

// See Scheduler::Block. Any thread of the platform; a wait of the host thread runs its actions.
bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline);
void Wake(KernelLock& lock);
void SchedulingPoint();

// Runs `action` on the host thread at that time (when it has passed: in its turn, without delay).
// Any thread. The forms without a lock parameter take the lock.
EventId At(Time when, Action action);
EventId At(KernelLock& lock, Time when, Action action);
EventId After(Duration delay, Action action);
// Ignores an unknown id and an action that has run already.
void Cancel(EventId id);

bool RunHostThread(const std::function<bool()>& done);
Time RunDueActions();

// Puts the unit's clock forward: everything that was due in between is overdue at once. Actions run
// in order of their times; waits and sleeps whose deadline has passed time out, simulated threads
// of one priority in order of their deadlines. Does nothing and returns false for a jump back (a
// unit's clock never runs backwards) or of more than kLongestJump. Host thread.
inline constexpr Duration kLongestJump = std::chrono::hours(24 * 1000);
bool JumpClock(Duration forward);

// The pace of a free-running unit's clock. While it is paused, the unit's time stands: no wait,
// sleep or action comes due that was not due before. Threads that need no time still run, and so do
// actions for a time that has come. The functions return false, and do nothing, in simulated time.
// PauseClock: any thread, with or without the kernel lock. The others: any thread, without it.
bool PauseClock();
bool ResumeClock();
// Times as fast as the host's clock, above 0; also while the clock is paused.
bool SetClockSpeed(double speed);
bool ClockPaused();
double ClockSpeed();

// Sets the function that wakes an event loop which waits outside the kernel: called (any thread,
// kernel lock held) when an action was added or the screen changed. Set before threads start.
void SetHostThreadWaker(std::function<void()> waker);

}  // namespace platform::kernel
