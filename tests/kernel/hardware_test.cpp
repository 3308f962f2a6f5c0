#include <windows.h>

#include <gtest/gtest.h>

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
    void Then(const char* what) { order += what; }
};

TEST_P(Hardware, ActionsRunInOrderOfTimeThenOfArrival) {
    const kernel::Time start = kernel::Now();
    kernel::At(start + milliseconds(20), [&] { Then("late "); });
    kernel::At(start + milliseconds(10), [&] { Then("first "); });
    kernel::At(start + milliseconds(10), [&] { Then("second "); });
    kernel::At(start - milliseconds(10), [&] {
        Then("overdue ");
        EXPECT_GE(kernel::Now(), start);
        kernel::At(start, [&] { Then("nested "); });
    });
    const kernel::EventId cancelled =
        kernel::At(start + milliseconds(15), [&] { Then("cancelled "); });
    kernel::Cancel(cancelled);
    kernel::Cancel(cancelled);
    kernel::Cancel(987654);
    platform.RunFor(milliseconds(20));
    EXPECT_EQ(order, "overdue nested first second late ");
    EXPECT_GE(kernel::Now(), start + milliseconds(20));
}

TEST_P(Hardware, ThreadsOrderActionsThatTheHardwaresThreadRuns) {
    std::atomic<int> ran = 0;
    const auto hardware = std::this_thread::get_id();
    platform.Run([&] {
        const auto count = [&] {
            EXPECT_EQ(std::this_thread::get_id(), hardware);
            ++ran;
        };
        kernel::After(milliseconds(5), count);
        kernel::Cancel(kernel::After(std::chrono::seconds(10), [&] { ran += 10; }));
        Sleep(10'100);
    });
    EXPECT_EQ(ran, 1);
}

// The hardware's thread may call what does not wait (it puts records into message queues); that
// must not start another action in the middle of the running one.
TEST_P(Hardware, CallWithoutWaitingStartsNoOtherAction) {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const kernel::Time now = kernel::Now();
    kernel::At(now, [&] {
        Then("begin ");
        EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
        SetEvent(event);
        EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
        Then("end ");
    });
    kernel::At(now, [&] { Then("other "); });
    platform.RunFor(milliseconds(1));
    EXPECT_EQ(order, "begin end other ");
    CloseHandle(event);
}

TEST_P(Hardware, MayWaitForThreadsAndForTime) {
    const HANDLE question = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE answer = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    tests::Crew crew;
    crew.Start([=] {
        WaitForSingleObject(question, INFINITE);
        Sleep(30);
        SetEvent(answer);
    });
    kernel::Time start = kernel::Now();
    EXPECT_EQ(WaitForSingleObject(answer, 10), WAIT_TIMEOUT);
    EXPECT_GE(kernel::Now(), start + milliseconds(10));
    start = kernel::Now();
    SetEvent(question);
    EXPECT_EQ(WaitForSingleObject(answer, INFINITE), WAIT_OBJECT_0);
    EXPECT_GE(kernel::Now(), start + milliseconds(30));
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
    const auto thread = kernel::StartThread([&] {
        kernel::After(milliseconds(20), [&] { ran = true; });
        return DWORD{0};
    });
    while (wakes == 0)
        std::this_thread::yield();
    kernel::Time next = kernel::RunDueActions();
    EXPECT_TRUE(ran || next != kernel::kNever);
    while (!ran)
        next = kernel::RunDueActions();
    EXPECT_EQ(kernel::RunDueActions(), kernel::kNever);
    kernel::SetHardwareWaker({});
    platform.Run([] {});
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

TEST(FreeRunning, SleepsAreNeverShortAtAnySpeed) {
    for (const double speed : {1.0, 7.3, 1000.0}) {
        Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = speed});
        platform.Run([&] {
            for (const DWORD duration : {0U, 1U, 3U, 10U}) {
                const DWORD ticks = GetTickCount();
                const kernel::Time start = kernel::Now();
                Sleep(duration);
                EXPECT_GE(kernel::Now() - start, milliseconds(duration)) << "speed " << speed;
                EXPECT_GE(GetTickCount() - ticks, duration) << "speed " << speed;
            }
        });
    }
}

}  // namespace
