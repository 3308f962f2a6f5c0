#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/support/platform_test.h"

namespace tests {
namespace {

class HostThread : public InEveryMode {
  protected:
    Platform platform{GetParam().options};
    std::string order;
};
INSTANTIATE_IN_EVERY_MODE(HostThread);

TEST_P(HostThread, ActionsRunInOrderOfTimeThenOfArrival) {
    const kernel::Time start = kernel::Now();
    const auto plan = [&](kernel::Duration from_start, const char* what) {
        return kernel::At(start + from_start, [this, what] { order += what; });
    };
    plan(20ms, "late ");
    plan(10ms, "first ");
    plan(10ms, "second ");
    kernel::At(start - 10ms, [&] {
        order += "overdue ";
        plan(0ms, "nested ");
    });
    const kernel::EventId cancelled = plan(15ms, "cancelled ");
    for (const kernel::EventId id : {cancelled, cancelled, kernel::EventId{987654}})
        kernel::Cancel(id);
    platform.RunFor(20ms);
    EXPECT_EQ(order, "overdue nested first second late ");
}

// The host thread may make calls that do not wait; these must not start another action in the
// middle of the running one. When it does wait, threads run and time passes.
TEST_P(HostThread, StartsNoOtherActionUnlessItWaits) {
    const HANDLE question = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE done_event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    kernel::After({}, [&] {
        EXPECT_EQ(WaitForSingleObject(done_event, 0), WAIT_TIMEOUT);
        SetEvent(done_event);
        EXPECT_EQ(WaitForSingleObject(done_event, INFINITE), WAIT_OBJECT_0);
        order += "first ";
    });
    kernel::After({}, [&] { order += "other "; });
    platform.RunFor(1ms);
    EXPECT_EQ(order, "first other ");

    Crew crew([=] {
        WaitForSingleObject(question, INFINITE);
        Sleep(30);
        SetEvent(done_event);
    });
    const kernel::Time start = kernel::Now();
    EXPECT_EQ(WaitForSingleObject(done_event, 10), WAIT_TIMEOUT);
    SetEvent(question);
    EXPECT_EQ(WaitForSingleObject(done_event, INFINITE), WAIT_OBJECT_0);
    EXPECT_GE(kernel::Now(), start + 40ms);
    crew.Join();
    CloseHandle(question);
    CloseHandle(done_event);
}

// The waker notifies an event loop outside the kernel, which then runs the due actions.
TEST(FreeRunning, WakerAndDueActionsServeAnEventLoopOutside) {
    Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = 100});
    std::atomic<int> wakes = 0;
    bool ran = false;
    kernel::SetHostThreadWaker([&] { ++wakes; });
    EXPECT_EQ(kernel::RunDueActions(), kernel::kNever);
    const Crew crew([&] { kernel::After(20ms, [&] { ran = true; }); });
    while (wakes == 0)
        std::this_thread::yield();
    while (!ran)
        kernel::RunDueActions();
    EXPECT_EQ(kernel::RunDueActions(), kernel::kNever);
    kernel::SetHostThreadWaker({});
}

// The host thread must not miss a wake between its check and its wait. It checks again every 50 ms
// anyway, which would hide a missed wake; a loaded host may be slow once, not every time.
TEST(FreeRunning, HostThreadMissesNoWake) {
    Platform platform({.mode = kernel::Mode::kFreeRunning});
    kernel::Duration shortest = kernel::kNever;
    for (int attempt = 0; attempt < 5; ++attempt) {
        bool asked = false;
        const kernel::Time start = kernel::Now();
        EXPECT_TRUE(kernel::RunHostThread([&] {
            if (std::exchange(asked, true))
                return true;
            kernel::KernelLock lock = kernel::LockKernel();
            kernel::Wake(lock);
            return false;
        }));
        shortest = std::min(shortest, kernel::Now() - start);
    }
    EXPECT_LT(shortest, 40ms);
}

}  // namespace
}  // namespace tests
