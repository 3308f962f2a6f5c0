#include <mutex>
#include <vector>

#include "platform/kernel/event_queue.h"
#include "platform/kernel/kernel_state.h"

namespace platform::kernel {
namespace {

using HostClock = std::chrono::steady_clock;

// Longer than any process lives, within the range of the host's clock.
constexpr std::chrono::hours kFarAway{24 * 365 * 20};

// Real threads in parallel, real time or `speed` times real time.
class FreeScheduler final : public Scheduler {
  public:
    FreeScheduler(const Options& options, Thread& host_thread)
        : pace_{options.start, HostClock::now(), options.speed, false}, host_thread_(host_thread) {}

    Time Now() const override {
        const std::scoped_lock lock(pace_mutex_);
        return NowAt(HostClock::now());
    }

    void Jump(KernelLock&, Duration forward) override {
        {
            const std::scoped_lock lock(pace_mutex_);
            pace_.unit += forward;
        }
        WakeAll();
    }

    // Nobody is woken: who wakes for an earlier deadline finds that it has not come, and waits on.
    bool Pause() override {
        ChangePace([this] { pace_.paused = true; });
        return true;
    }

    bool Resume(KernelLock&) override {
        ChangePace([this] { pace_.paused = false; });
        WakeAll();
        return true;
    }

    bool SetSpeed(KernelLock&, double speed) override {
        ChangePace([this, speed] { pace_.speed = speed; });
        WakeAll();
        return true;
    }

    bool paused() const override {
        const std::scoped_lock lock(pace_mutex_);
        return pace_.paused;
    }

    double speed() const override {
        const std::scoped_lock lock(pace_mutex_);
        return pace_.speed;
    }

    bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline) override {
        Thread& self = CurrentThread();
        bool answer = ready();
        if (answer || Now() >= deadline)
            return answer;
        self.blocked_on = &ready;
        waiting_.push_back(&self);
        while (!answer && Now() < deadline) {
            WaitUntil(self.wake, lock, deadline);
            answer = ready();
        }
        std::erase(waiting_, &self);
        self.blocked_on = nullptr;
        return answer;
    }

    void Wake(KernelLock&) override {
        for (Thread* thread : waiting_)
            if ((*thread->blocked_on)())
                thread->wake.notify_one();
        WakeHostThread();
    }

    void SchedulingPoint() override {}
    void Adopt(KernelLock&, Thread&) override {}
    void Enter(KernelLock&, Thread&) override {}
    void Leave(KernelLock& lock, Thread&) override { Wake(lock); }

    EventId At(KernelLock&, Time when, Action action) override {
        WakeHostThread();
        return events_.Add(when, std::move(action));
    }

    void Cancel(KernelLock&, EventId id) override { events_.Cancel(id); }

    bool RunHostThread(const std::function<bool()>& done) override {
        while (!done()) {
            KernelLock lock = LockKernel();
            if (Action action = events_.TakeDue(Now())) {
                lock.unlock();
                action();
                continue;
            }
            // Not after a wake since done() was called: done() may depend on the changed state.
            if (!host_thread_woken_)
                host_thread_.wake.wait_until(
                    lock, std::min(HostTime(events_.NextDue()), HostClock::now() + kCallAgain));
            host_thread_woken_ = false;
        }
        return true;
    }

    Time RunDueActions() override {
        KernelLock lock = LockKernel();
        while (Action action = events_.TakeDue(Now())) {
            lock.unlock();
            action();
            lock.lock();
        }
        return events_.NextDue();
    }

  private:
    // done() may depend on anything; it is called again after this much host time at the latest.
    static constexpr HostClock::duration kCallAgain = std::chrono::milliseconds(50);

    // How the unit's time follows the host's, since the last change of either.
    struct Pace {
        Time unit;
        HostClock::time_point host;
        double speed;
        bool paused;
    };

    // With the pace's mutex.
    Time NowAt(HostClock::time_point host) const {
        if (pace_.paused)
            return pace_.unit;
        const std::chrono::duration<double, std::micro> passed = host - pace_.host;
        return pace_.unit + Time(static_cast<Time::rep>(passed.count() * pace_.speed));
    }

    template <class Change>
    void ChangePace(Change change) {
        const std::scoped_lock lock(pace_mutex_);
        const HostClock::time_point host = HostClock::now();
        pace_.unit = NowAt(host);
        pace_.host = host;
        change();
    }

    void WakeAll() {
        for (Thread* thread : waiting_)
            thread->wake.notify_one();
        WakeHostThread();
    }

    void WakeHostThread() {
        host_thread_woken_ = true;
        host_thread_.wake.notify_one();
    }

    HostClock::time_point HostTime(Time time) const {
        const std::scoped_lock lock(pace_mutex_);
        const std::chrono::duration<double, std::micro> unit_time = time - pace_.unit;
        const std::chrono::duration<double, std::micro> host_time = unit_time / pace_.speed;
        // What is overdue is due while the clock is paused, too.
        if (time == kNever || host_time > kFarAway || (pace_.paused && time > pace_.unit))
            return pace_.host + kFarAway;
        // The microsecond compensates for rounding down here and in Now().
        return pace_.host + std::chrono::duration_cast<HostClock::duration>(host_time) +
               std::chrono::microseconds(1);
    }

    void WaitUntil(std::condition_variable& wake, KernelLock& lock, Time deadline) {
        if (deadline == kNever) {
            wake.wait(lock);
            return;
        }
        wake.wait_until(lock, HostTime(deadline));
    }

    // Locked last: Now() is called with and without any other lock.
    mutable std::mutex pace_mutex_;
    Pace pace_;
    Thread& host_thread_;
    EventQueue events_;
    std::vector<Thread*> waiting_;
    bool host_thread_woken_ = false;
};

}  // namespace

std::unique_ptr<Scheduler> MakeFreeScheduler(const Options& options, Thread& host_thread) {
    return std::make_unique<FreeScheduler>(options, host_thread);
}

}  // namespace platform::kernel
