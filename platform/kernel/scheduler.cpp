#include "platform/kernel/scheduler.h"

#include <windows.h>

#include "platform/kernel/kernel_state.h"

namespace platform::kernel {
namespace {

bool BlockHostThread(KernelLock& lock, const std::function<bool()>& ready, Time deadline) {
    // A call that need not wait must not start other actions in the middle of the running one.
    if (ready())
        return true;
    if (Now() >= deadline)
        return false;
    Scheduler& scheduler = *State().scheduler;
    const EventId alarm = deadline == kNever ? 0 : scheduler.At(lock, deadline, [] {});
    lock.unlock();
    scheduler.RunHostThread([&] {
        KernelLock inner = LockKernel();
        return ready() || Now() >= deadline;
    });
    lock.lock();
    scheduler.Cancel(lock, alarm);
    return ready();
}

}  // namespace

Time Now() {
    return State().scheduler->Now();
}

Time DeadlineAfter(unsigned long milliseconds) {
    return milliseconds == INFINITE ? kNever : Now() + std::chrono::milliseconds(milliseconds);
}

bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline) {
    if (&CurrentThread() == State().host_thread.get())
        return BlockHostThread(lock, ready, deadline);
    return State().scheduler->Block(lock, ready, deadline);
}

void Wake(KernelLock& lock) {
    State().scheduler->Wake(lock);
}

void SchedulingPoint() {
    State().scheduler->SchedulingPoint();
}

EventId At(KernelLock& lock, Time when, Action action) {
    const EventId id = State().scheduler->At(lock, when, std::move(action));
    if (State().host_thread_waker)
        State().host_thread_waker();
    return id;
}

EventId At(Time when, Action action) {
    KernelLock lock = LockKernel();
    return At(lock, when, std::move(action));
}

EventId After(Duration delay, Action action) {
    return At(Now() + delay, std::move(action));
}

void Cancel(EventId id) {
    KernelLock lock = LockKernel();
    State().scheduler->Cancel(lock, id);
}

bool RunHostThread(const std::function<bool()>& done) {
    const bool finished = State().scheduler->RunHostThread(done);
    ReapThreads();
    return finished;
}

Time RunDueActions() {
    return State().scheduler->RunDueActions();
}

bool JumpClock(Duration forward) {
    if (forward < Duration::zero() || forward > kLongestJump)
        return false;
    KernelLock lock = LockKernel();
    State().scheduler->Jump(lock, forward);
    if (State().host_thread_waker)
        State().host_thread_waker();
    return true;
}

namespace {

void WakeEventLoop() {
    if (State().host_thread_waker)
        State().host_thread_waker();
}

}  // namespace

bool PauseClock() {
    return State().scheduler->Pause();
}

bool ResumeClock() {
    KernelLock lock = LockKernel();
    const bool resumed = State().scheduler->Resume(lock);
    WakeEventLoop();
    return resumed;
}

bool SetClockSpeed(double speed) {
    KernelLock lock = LockKernel();
    const bool set = State().scheduler->SetSpeed(lock, speed);
    WakeEventLoop();
    return set;
}

bool ClockPaused() {
    return State().scheduler->paused();
}

double ClockSpeed() {
    return State().scheduler->speed();
}

void SetHostThreadWaker(std::function<void()> waker) {
    KernelLock lock = LockKernel();
    State().host_thread_waker = std::move(waker);
}

}  // namespace platform::kernel
