#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

#include "platform/kernel/scheduler.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

namespace {

namespace kernel = platform::kernel;
using std::chrono::milliseconds;
using tests::Platform;

class Hardware : public tests::InEveryMode {
  protected:
    Platform platform{GetParam().options};
    std::string order;
};

TEST_P(Hardware, ActionsRunInOrderOfTimeThenOfArrival) {
    const kernel::Time start = kernel::Now();
    const auto plan = [&](int milliseconds_from_start, const char* what) {
        return kernel::At(start + milliseconds(milliseconds_from_start),
                          [this, what] { order += what; });
    };
    plan(20, "late ");
    plan(10, "first ");
    plan(10, "second ");
    kernel::At(start - milliseconds(10), [&] {
        order += "overdue ";
        plan(0, "nested ");
    });
    const kernel::EventId cancelled = plan(15, "cancelled ");
    for (const kernel::EventId id : {cancelled, cancelled, kernel::EventId{987654}})
        kernel::Cancel(id);
    platform.RunFor(milliseconds(20));
    EXPECT_EQ(order, "overdue nested first second late ");
}

// The hardware's thread may call what does not wait (it puts records into message queues); that
// must not start another action in the middle of the running one. Where it does wait, the threads
// and the time go on.
TEST_P(Hardware, StartsNoOtherActionUnlessItWaits) {
    const HANDLE question = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE answer = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    kernel::After({}, [&] {
        EXPECT_EQ(WaitForSingleObject(answer, 0), WAIT_TIMEOUT);
        SetEvent(answer);
        EXPECT_EQ(WaitForSingleObject(answer, INFINITE), WAIT_OBJECT_0);
        order += "first ";
    });
    kernel::After({}, [&] { order += "other "; });
    platform.RunFor(milliseconds(1));
    EXPECT_EQ(order, "first other ");

    tests::Crew crew;
    crew.Start([=] {
        WaitForSingleObject(question, INFINITE);
        Sleep(30);
        SetEvent(answer);
    });
    const kernel::Time start = kernel::Now();
    EXPECT_EQ(WaitForSingleObject(answer, 10), WAIT_TIMEOUT);
    SetEvent(question);
    EXPECT_EQ(WaitForSingleObject(answer, INFINITE), WAIT_OBJECT_0);
    EXPECT_GE(kernel::Now(), start + milliseconds(40));
    crew.Join();
    CloseHandle(question);
    CloseHandle(answer);
}

INSTANTIATE_IN_EVERY_MODE(Hardware);

// An event loop outside the kernel is told that there is something to do, and runs it by itself.
TEST(FreeRunning, WakerAndDueActionsServeAnEventLoopOutside) {
    Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = 100});
    std::atomic<int> wakes = 0;
    std::atomic<bool> ran = false;
    kernel::SetHardwareWaker([&] { ++wakes; });
    EXPECT_EQ(kernel::RunDueActions(), kernel::kNever);
    tests::Crew crew;
    crew.Start([&] { kernel::After(milliseconds(20), [&] { ran = true; }); });
    while (wakes == 0)
        std::this_thread::yield();
    while (!ran)
        kernel::RunDueActions();
    EXPECT_EQ(kernel::RunDueActions(), kernel::kNever);
    kernel::SetHardwareWaker({});
}

// What is signalled between the question and the wait must not be slept over. The hardware looks
// again every 50 ms anyway, which would hide it; a loaded host may be slow once, not every time.
TEST(FreeRunning, HardwareSleepsThroughNoWake) {
    Platform platform({.mode = kernel::Mode::kFreeRunning});
    kernel::Duration shortest = kernel::kNever;
    for (int attempt = 0; attempt < 5; ++attempt) {
        bool asked = false;
        const kernel::Time start = kernel::Now();
        EXPECT_TRUE(kernel::RunHardware([&] {
            if (asked)
                return true;
            asked = true;
            kernel::KernelLock lock = kernel::LockKernel();
            kernel::Wake(lock);
            return false;
        }));
        shortest = std::min(shortest, kernel::Now() - start);
    }
    EXPECT_LT(shortest, milliseconds(40));
}

}  // namespace
