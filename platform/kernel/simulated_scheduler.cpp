#include <sched.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <vector>

#include "platform/kernel/event_queue.h"
#include "platform/kernel/kernel_state.h"

namespace platform::kernel {
namespace {

const std::function<bool()> kAlways = [] { return true; };

// Keeps the calling thread, and the threads that it starts, on its current processor while the
// object lives. Threads that run one at a time then hand over without waking another processor,
// which takes most of the time of a simulated run otherwise. Created and destroyed on one thread;
// does nothing where the host forbids it.
class OneProcessor {
  public:
    OneProcessor() {
        cpu_set_t here;
        CPU_ZERO(&here);
        const int processor = sched_getcpu();
        known_ = processor >= 0 && sched_getaffinity(0, sizeof allowed_, &allowed_) == 0;
        if (!known_)
            return;
        CPU_SET(processor, &here);
        sched_setaffinity(0, sizeof here, &here);
    }
    ~OneProcessor() {
        if (known_)
            sched_setaffinity(0, sizeof allowed_, &allowed_);
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

  private:
    cpu_set_t allowed_{};
    bool known_ = false;
};

// One thread runs at a time and hands over when it blocks. When all are blocked, the clock jumps
// to the next deadline or action. The host thread goes first, then the most urgent thread; the seed
// chooses among equals.
class SimulatedScheduler final : public Scheduler {
  public:
    SimulatedScheduler(const Options& options, Thread& host_thread)
        : now_(options.start.count()),
          preempt_(options.preempt),
          host_thread_(host_thread),
          random_(options.seed) {
        host_thread_.running = true;
    }

    Time Now() const override { return Time(now_.load()); }

    // The clock stands by itself between events.
    bool Pause() override { return false; }
    bool Resume(KernelLock&) override { return false; }
    bool SetSpeed(KernelLock&, double) override { return false; }
    bool paused() const override { return false; }
    double speed() const override { return 1; }

    void Jump(KernelLock&, Duration forward) override {
        now_ += forward.count();
        woken_ = true;
    }

    bool Block(KernelLock& lock, const std::function<bool()>& ready, Time deadline) override {
        Thread& self = CurrentThread();
        if (ready())
            return true;
        HandOver(lock, self, ready, deadline);
        return ready();
    }

    void Wake(KernelLock&) override { woken_ = true; }

    void SchedulingPoint() override {
        Thread& self = CurrentThread();
        if (&self == &host_thread_)
            return;
        KernelLock lock = LockKernel();
        const bool preempted = preempt_ && random_() % kPreemptOneIn == 0;
        if (!preempted && !(woken_ && MoreUrgentIsReady(self)))
            return;
        HandOver(lock, self, kAlways, kNever);
    }

    void Adopt(KernelLock&, Thread& thread) override {
        thread.blocked_on = &kAlways;
        threads_.push_back(&thread);
        woken_ = true;
    }

    void Enter(KernelLock& lock, Thread& thread) override {
        thread.wake.wait(lock, [&] { return thread.running; });
        thread.blocked_on = nullptr;
    }

    void Leave(KernelLock&, Thread& thread) override {
        std::erase(threads_, &thread);
        thread.running = false;
        host_thread_requested_ = true;
        Start(Choose());
    }

    EventId At(KernelLock&, Time when, Action action) override {
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
            host_thread_requested_ = false;
            Thread& next = Choose();
            if (&next != &host_thread_) {
                host_thread_.running = false;
                Start(next);
                host_thread_.wake.wait(lock, [&] { return host_thread_.running; });
            }
            if (stalled_) {
                stalled_ = false;
                lock.unlock();
                return done();
            }
        }
        return true;
    }

    Time RunDueActions() override {
        RunHostThread([this] {
            KernelLock lock = LockKernel();
            return events_.NextDue() > Now();
        });
        KernelLock lock = LockKernel();
        return events_.NextDue();
    }

  private:
    static constexpr unsigned kPreemptOneIn = 8;

    static bool IsReady(const Thread& thread, Time now) {
        return thread.blocked_until <= now || (thread.blocked_on && (*thread.blocked_on)());
    }

    bool MoreUrgentIsReady(const Thread& self) {
        woken_ = false;
        for (const Thread* thread : threads_)
            if (thread->priority < self.priority && IsReady(*thread, Now()))
                return true;
        return false;
    }

    void HandOver(KernelLock& lock, Thread& self, const std::function<bool()>& ready,
                  Time deadline) {
        self.blocked_on = &ready;
        self.blocked_until = deadline;
        self.running = false;
        Start(Choose());
        self.wake.wait(lock, [&] { return self.running; });
        self.blocked_on = nullptr;
        self.blocked_until = kNever;
    }

    static void Start(Thread& thread) {
        thread.running = true;
        thread.wake.notify_one();
    }

    Thread& Choose() {
        for (;;) {
            if (host_thread_requested_ || events_.NextDue() <= Now())
                return host_thread_;
            if (Thread* thread = ChooseReady())
                return *thread;
            Time next = events_.NextDue();
            for (const Thread* thread : threads_)
                next = std::min(next, thread->blocked_until);
            if (next == kNever) {
                stalled_ = true;
                return host_thread_;
            }
            now_.store(next.count());
        }
    }

    Thread* ChooseReady() {
        candidates_.clear();
        for (Thread* thread : threads_) {
            if (!candidates_.empty() && thread->priority > candidates_.front()->priority)
                continue;
            if (!IsReady(*thread, Now()))
                continue;
            if (!candidates_.empty() && thread->priority < candidates_.front()->priority)
                candidates_.clear();
            candidates_.push_back(thread);
        }
        if (candidates_.empty())
            return nullptr;
        // Only a jump of the clock makes threads overdue.
        Thread* const earliest = *std::ranges::min_element(candidates_, {}, &Thread::blocked_until);
        if (earliest->blocked_until < Now())
            return earliest;
        const std::size_t choice = candidates_.size() == 1 ? 0 : random_() % candidates_.size();
        return candidates_[choice];
    }

    const OneProcessor one_processor_;
    std::atomic<Time::rep> now_;
    const bool preempt_;
    Thread& host_thread_;
    std::mt19937_64 random_;
    EventQueue events_;
    std::vector<Thread*> threads_;
    std::vector<Thread*> candidates_;
    bool host_thread_requested_ = false;
    bool stalled_ = false;
    bool woken_ = false;
};

}  // namespace

std::unique_ptr<Scheduler> MakeSimulatedScheduler(const Options& options, Thread& host_thread) {
    return std::make_unique<SimulatedScheduler>(options, host_thread);
}

}  // namespace platform::kernel
