#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>

#include "platform/kernel/kernel.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

namespace {

using tests::Crew;

class Wait : public tests::InEveryMode {
  protected:
    tests::Platform platform{GetParam().options};
};

TEST_P(Wait, LowestSignalledIndexWinsAndOnlyItIsConsumed) {
    platform.Run([] {
        const HANDLE events[] = {CreateEventW(nullptr, FALSE, FALSE, nullptr),
                                 CreateEventW(nullptr, FALSE, TRUE, nullptr),
                                 CreateEventW(nullptr, TRUE, TRUE, nullptr)};
        const auto wait = [&] { return WaitForMultipleObjects(3, events, FALSE, 0); };
        EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1);
        EXPECT_EQ(wait(), WAIT_OBJECT_0 + 2);
        EXPECT_EQ(wait(), WAIT_OBJECT_0 + 2) << "a manual-reset event stays";
        SetEvent(events[1]);
        SetEvent(events[1]);
        SetEvent(events[0]);
        EXPECT_EQ(wait(), WAIT_OBJECT_0);
        EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1);
        ResetEvent(events[2]);
        EXPECT_EQ(wait(), WAIT_TIMEOUT) << "signals of an event do not add up";
        for (const HANDLE event : events)
            CloseHandle(event);
    });
}

TEST_P(Wait, AutoResetEventLetsExactlyOneWaiterThrough) {
    platform.Run([] {
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        std::atomic<int> through = 0;
        Crew crew;
        for (int index = 0; index < 4; ++index)
            crew.Start([&] {
                WaitForSingleObject(event, INFINITE);
                ++through;
            });
        for (int expected = 1; expected <= 4; ++expected) {
            SetEvent(event);
            while (through < expected)
                Sleep(1);
            Sleep(20);
            EXPECT_EQ(through, expected);
        }
        crew.Join();
        CloseHandle(event);
    });
}

// A lost wake-up would stop the ball.
TEST_P(Wait, PingPong) {
    platform.Run([] {
        const HANDLE ping = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const HANDLE pong = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        int ball = 0;
        const auto play = [&ball](HANDLE receive, HANDLE send) {
            for (int round = 0; round < 2000; ++round) {
                EXPECT_EQ(WaitForSingleObject(receive, INFINITE), WAIT_OBJECT_0);
                ++ball;
                SetEvent(send);
            }
        };
        Crew crew;
        crew.Start([&] { play(ping, pong); });
        SetEvent(ping);
        play(pong, ping);
        crew.Join();
        EXPECT_EQ(ball, 4000);
        CloseHandle(ping);
        CloseHandle(pong);
    });
}

TEST_P(Wait, MutexIsRecursiveAndOwned) {
    platform.Run([] {
        const HANDLE mutex = CreateMutexW(nullptr, TRUE, nullptr);
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        Crew crew;
        const auto others_turn = [&](DWORD result) {
            crew.Start([=] {
                EXPECT_EQ(WaitForSingleObject(mutex, 5), result);
                SetLastError(0);
                EXPECT_EQ(ReleaseMutex(mutex), result == WAIT_OBJECT_0);
                EXPECT_EQ(GetLastError(), result == WAIT_OBJECT_0 ? 0 : ERROR_NOT_OWNER);
            });
            crew.Join();
        };
        others_turn(WAIT_TIMEOUT);
        EXPECT_TRUE(ReleaseMutex(mutex));
        others_turn(WAIT_TIMEOUT);
        EXPECT_TRUE(ReleaseMutex(mutex));
        others_turn(WAIT_OBJECT_0);
        EXPECT_FALSE(ReleaseMutex(mutex));
        CloseHandle(mutex);
    });
}

TEST_P(Wait, MutexOfAThreadThatEndedIsAbandonedOnce) {
    platform.Run([] {
        const HANDLE taken = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
        Crew crew;
        crew.Start([&] {
            WaitForSingleObject(mutex, INFINITE);
            WaitForSingleObject(mutex, INFINITE);
            SetEvent(taken);
            Sleep(20);
        });
        WaitForSingleObject(taken, INFINITE);
        const HANDLE both[] = {taken, mutex};
        EXPECT_EQ(WaitForMultipleObjects(2, both, FALSE, INFINITE), WAIT_ABANDONED_0 + 1);
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_FALSE(ReleaseMutex(mutex)) << "the dead thread's takes do not count";
        crew.Join();
        CloseHandle(taken);
        CloseHandle(mutex);
    });
}

TEST_P(Wait, CriticalSectionExcludesOthersAndRecurses) {
    platform.Run([] {
        CRITICAL_SECTION section;
        InitializeCriticalSection(&section);
        int inside = 0;
        int total = 0;
        Crew crew;
        for (int index = 0; index < 3; ++index)
            crew.Start([&] {
                for (int round = 0; round < 50; ++round) {
                    EnterCriticalSection(&section);
                    EXPECT_TRUE(TryEnterCriticalSection(&section));
                    LeaveCriticalSection(&section);
                    EXPECT_EQ(++inside, 1);
                    ++total;
                    Sleep(round % 10 == 0 ? 1 : 0);
                    --inside;
                    LeaveCriticalSection(&section);
                }
            });
        crew.Join();
        EXPECT_EQ(total, 150);
        EnterCriticalSection(&section);
        crew.Start([&] {
            LeaveCriticalSection(&section);
            EXPECT_FALSE(TryEnterCriticalSection(&section)) << "left by one who was not in";
        });
        crew.Join();
        LeaveCriticalSection(&section);
        DeleteCriticalSection(&section);
    });
}

TEST_P(Wait, ThreadIsSignalledOnceItHasEnded) {
    platform.Run([] {
        const auto body = [](LPVOID gate) -> DWORD {
            WaitForSingleObject(gate, INFINITE);
            return 42;
        };
        const HANDLE gate = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        DWORD id = 0;
        const HANDLE thread = CreateThread(nullptr, 0, body, gate, 0, &id);
        EXPECT_NE(id, GetCurrentThreadId());
        EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
        DWORD code = 0;
        EXPECT_TRUE(GetExitCodeThread(thread, &code));
        EXPECT_EQ(code, STILL_ACTIVE);
        SetEvent(gate);
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(GetExitCodeThread(thread, &code));
        EXPECT_EQ(code, 42U);
        CloseHandle(thread);
        CloseHandle(gate);
    });
}

// Threads that end while others are started: none is joined twice, lost or left.
TEST_P(Wait, ManyShortThreads) {
    std::atomic<int> ran = 0;
    platform.Run([&] {
        Crew starters;
        for (int starter = 0; starter < 2; ++starter)
            starters.Start([&ran] {
                Crew crew;
                for (int index = 0; index < 100; ++index) {
                    crew.Start([&ran] { ++ran; });
                    if (index % 5 == 0)
                        crew.Join();
                }
            });
    });
    EXPECT_EQ(ran, 200);
}

INSTANTIATE_IN_EVERY_MODE(Wait);

}  // namespace
