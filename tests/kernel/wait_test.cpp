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
    EXPECT_EQ(WaitForMultipleObjects(2, events, FALSE, 0), WAIT_TIMEOUT)
        << "signals of an event do not add up";
    for (const HANDLE event : events)
        CloseHandle(event);
}

// An auto-reset event and a critical section both serve as a lock. A lost wake-up would hang this;
// two waiters released at once would meet inside.
EVERY_MODE_TEST(Wait, LocksAdmitOneThreadAtATimeAndLoseNoWakeUp) {
    const HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    const std::pair<std::function<void()>, std::function<void()>> locks[] = {
        {[&] { WaitForSingleObject(event, INFINITE); }, [&] { SetEvent(event); }},
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
}

EVERY_MODE_TEST(Wait, CriticalSectionIsFreeAfterAsManyLeavesAsEnters) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    EnterCriticalSection(&section);
    EnterCriticalSection(&section);
    std::atomic<int> leaves = 0;
    Crew other([&] {
        LeaveCriticalSection(&section);  // not its owner
        EnterCriticalSection(&section);
        EXPECT_EQ(leaves, 2);
        LeaveCriticalSection(&section);
    });
    for (int count = 0; count < 2; ++count) {
        Sleep(5);
        ++leaves;
        LeaveCriticalSection(&section);
    }
    other.Join();
    DeleteCriticalSection(&section);
}

EVERY_MODE_TEST(Wait, MutexIsAbandonedOnceByAThreadThatEnded) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    const HANDLE taken = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE tried = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    Crew owner([&] {
        for (int take = 0; take < 2; ++take)
            EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        SetEvent(taken);
        WaitForSingleObject(tried, INFINITE);
    });
    WaitForSingleObject(taken, INFINITE);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    SetEvent(tried);
    owner.Join();
    CloseHandle(taken);
    CloseHandle(tried);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    CloseHandle(mutex);
}

// Threads end while others start: none is joined twice or left over.
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
