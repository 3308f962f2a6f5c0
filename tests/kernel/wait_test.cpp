#include <atomic>

#include "tests/support/platform_test.h"

namespace tests {
namespace {

EVERY_MODE_SUITE(Wait);

EVERY_MODE_TEST(Wait, LowestSignalledIndexWinsAndOnlyItIsConsumed) {
    const HANDLE events[] = {CreateEventW(nullptr, FALSE, FALSE, nullptr),
                             CreateEventW(nullptr, FALSE, TRUE, nullptr),
                             CreateEventW(nullptr, TRUE, TRUE, nullptr)};
    const auto wait = [&] { return WaitForMultipleObjects(3, events, FALSE, 0); };
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 2);
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 2) << "a manual-reset event stays";
    for (const int index : {1, 1, 0})
        SetEvent(events[index]);
    EXPECT_EQ(wait(), WAIT_OBJECT_0);
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1);
    ResetEvent(events[2]);
    EXPECT_EQ(wait(), WAIT_TIMEOUT) << "signals of an event do not add up";
    for (const HANDLE event : events)
        CloseHandle(event);
}

// An auto-reset event, a mutex and a critical section all serve as a lock. A lost wake-up would
// stop this; two waiters let through by one release would meet inside.
EVERY_MODE_TEST(Wait, LocksLetOneInAtATimeAndForgetNobody) {
    const HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    const auto wait = [](HANDLE handle) {
        EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_OBJECT_0);
    };
    const std::pair<std::function<void()>, std::function<void()>> locks[] = {
        {[&] { wait(event); }, [&] { SetEvent(event); }},
        {[&] { wait(mutex); }, [&] { ReleaseMutex(mutex); }},
        {[&] { EnterCriticalSection(&section); }, [&] { LeaveCriticalSection(&section); }},
    };
    for (const auto& lock : locks) {
        int inside = 0;
        int total = 0;
        Crew crew;
        for (int index = 0; index < 3; ++index)
            crew.Start([&] {
                for (int round = 0; round < 500; ++round) {
                    lock.first();
                    EXPECT_EQ(++inside, 1);
                    ++total;
                    if (round % 50 == 0)
                        Sleep(1);
                    --inside;
                    lock.second();
                }
            });
        crew.Join();
        EXPECT_EQ(total, 1500) << "lock " << &lock - locks;
    }
    DeleteCriticalSection(&section);
    CloseHandle(event);
    CloseHandle(mutex);
}

EVERY_MODE_TEST(Wait, LocksBelongToTheirThreadAsOftenAsItTookThem) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    for (const bool free : {false, false, true}) {
        Crew([&] {
            EXPECT_EQ(WaitForSingleObject(mutex, 5), free ? WAIT_OBJECT_0 : WAIT_TIMEOUT);
            SetLastError(0);
            EXPECT_EQ(ReleaseMutex(mutex), free);
            EXPECT_EQ(GetLastError(), free ? 0 : ERROR_NOT_OWNER);
            if (!free)
                LeaveCriticalSection(&section);
            EXPECT_EQ(TryEnterCriticalSection(&section), free);
            if (free)
                LeaveCriticalSection(&section);
        });
        EXPECT_EQ(ReleaseMutex(mutex), !free);
        LeaveCriticalSection(&section);
    }
    CloseHandle(mutex);
    DeleteCriticalSection(&section);
}

EVERY_MODE_TEST(Wait, MutexOfAThreadThatEndedIsAbandonedOnce) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    const auto body = [](LPVOID taken) -> DWORD {
        WaitForSingleObject(taken, INFINITE);
        WaitForSingleObject(taken, INFINITE);
        Sleep(20);
        return 42;
    };
    const HANDLE thread = CreateThread(nullptr, 0, body, mutex, 0, nullptr);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread, &code) && code == STILL_ACTIVE);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(thread, &code) && code == 42);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_FALSE(ReleaseMutex(mutex)) << "the dead thread's takes do not count";
    CloseHandle(thread);
    CloseHandle(mutex);
}

// Threads that end while others are started: none is joined twice, lost or left.
EVERY_MODE_TEST(Wait, ManyShortThreads) {
    std::atomic<int> ran = 0;
    Crew starters;
    for (int starter = 0; starter < 2; ++starter)
        starters.Start([&] {
            for (int index = 0; index < 100; ++index)
                Crew([&] { ++ran; });
        });
    starters.Join();
    EXPECT_EQ(ran, 200);
}

}  // namespace
}  // namespace tests
