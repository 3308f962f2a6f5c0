#include <atomic>

#include "platform/kernel/message_queue.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

using platform::NamedKind;

constexpr wchar_t kShared[] = L"shared";

PLATFORM_TEST(Handles, InvalidOnesAreErrors) {
    static BYTE buffer[9];
    static DWORD count = 0;
    // Each with whether it accepts an event.
    const std::pair<BOOL (*)(HANDLE), bool> cases[] = {
        {[](HANDLE h) { return CloseHandle(h); }, true},
        {[](HANDLE h) { return CloseMsgQueue(h); }, false},
        {[](HANDLE h) { return SetEvent(h); }, true},
        {[](HANDLE h) { return BOOL(WaitForSingleObject(h, 0) != WAIT_FAILED); }, true},
        {[](HANDLE h) { return ReadMsgQueue(h, buffer, 9, &count, 0, &count); }, false},
        {[](HANDLE h) { return ReadFile(h, buffer, 1, &count, nullptr); }, false},
    };
    const HANDLE stale = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_TRUE(CloseHandle(stale));
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    for (const HANDLE wrong : {HANDLE{nullptr}, INVALID_HANDLE_VALUE, stale, event,
                               reinterpret_cast<HANDLE>(ULONG_PTR{0x123456789ABCDEF4})})
        for (const auto& [call, takes_events] : cases) {
            SCOPED_TRACE(testing::Message() << wrong);
            if (wrong != event || !takes_events)
                ExpectFails(ERROR_INVALID_HANDLE, [&] { return call(wrong); });
        }
    EXPECT_TRUE(CloseHandle(event));
}

PLATFORM_TEST(Handles, TooManyAreAnError) {
    std::vector<HANDLE> events;
    while (const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr))
        events.push_back(event);
    EXPECT_EQ(GetLastError(), ERROR_OUTOFMEMORY);
    for (const HANDLE open : events)
        EXPECT_TRUE(CloseHandle(open));
}

// A name has one object among all kinds and processes until its last handle is closed.
PLATFORM_TEST(Names, AreSharedByAllKindsAndProcesses) {
    auto& others = platform.board.other_process;
    MSGQUEUEOPTIONS options{sizeof options, 0, 3, 16, TRUE};
    const std::pair<NamedKind, std::function<HANDLE()>> makers[] = {
        {NamedKind::kEvent, [] { return CreateEventW(nullptr, TRUE, TRUE, kShared); }},
        {NamedKind::kMutex, [] { return CreateMutexW(nullptr, TRUE, kShared); }},
        {NamedKind::kMessageQueue, [&] { return CreateMsgQueue(kShared, &options); }},
    };
    const auto expect_only = [&](NamedKind kind) {
        EXPECT_EQ(kernel::FindNamedKind(kShared), kind);
        for (const auto& [each, make] : makers) {
            const HANDLE handle = make();
            EXPECT_EQ(GetLastError(), each == kind ? ERROR_ALREADY_EXISTS : ERROR_INVALID_HANDLE);
            EXPECT_EQ(CloseHandle(handle), each == kind);
        }
        if (kind != NamedKind::kEvent)
            ExpectFails(ERROR_INVALID_HANDLE,
                        [] { return OpenEventW(EVENT_ALL_ACCESS, FALSE, kShared) != nullptr; });
    };
    for (const auto& [kind, make] : makers) {
        const HANDLE own = make();
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS) << "the name is free";
        EXPECT_NE(WaitForSingleObject(own, 0), WAIT_FAILED);
        expect_only(kind);
        EXPECT_TRUE(CloseHandle(own));

        // The stand-in for another process's object has no state. It keeps the name without another
        // question, even when that process has ended.
        others.objects[kShared] = kind;
        const HANDLE stand_in = make();
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
        ExpectFails(ERROR_INVALID_HANDLE,
                    [&] { return WaitForSingleObject(stand_in, 0) != WAIT_FAILED; });
        others.objects.clear();
        others.questions = 0;
        expect_only(kind);
        EXPECT_EQ(others.questions, 0);
        EXPECT_TRUE(CloseHandle(stand_in));
    }
}

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
    // A thread that entered twice still holds the section after it has left once.
    const auto enter = [&] {
        EnterCriticalSection(&section);
        EnterCriticalSection(&section);
        LeaveCriticalSection(&section);
    };
    const std::pair<std::function<void()>, std::function<void()>> locks[] = {
        {[&] { WaitForSingleObject(event, INFINITE); }, [&] { SetEvent(event); }},
        {enter, [&] { LeaveCriticalSection(&section); }},
    };
    for (const auto& [lock, unlock] : locks) {
        int inside = 0;
        int total = 0;
        Crew crew;
        for (int index = 0; index < 3; ++index)
            crew.Start([&, lock = lock, unlock = unlock] {
                for (int round = 0; round < 500; ++round) {
                    lock();
                    EXPECT_EQ(++inside, 1);
                    ++total;
                    if (round % 50 == 0)
                        Sleep(1);
                    --inside;
                    unlock();
                }
            });
        crew.Join();
        EXPECT_EQ(total, 1500);
    }
    DeleteCriticalSection(&section);
    CloseHandle(event);
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

// For messages of up to 16 bytes.
HANDLE MakeQueue(DWORD most_messages, DWORD flags = 0) {
    MSGQUEUEOPTIONS options{sizeof options, flags, most_messages, 16, TRUE};
    return CreateMsgQueue(nullptr, &options);
}

void Write(kernel::QueueWriter& writer, const std::string& text) {
    writer.Write(std::as_bytes(std::span(text)));
}

void ExpectRead(HANDLE queue, const std::string& expected, DWORD error = ERROR_SUCCESS,
                DWORD timeout = 0, DWORD size = 16) {
    std::string text(size, '?');
    DWORD count = 0;
    DWORD flags = 0;
    const BOOL done = ReadMsgQueue(queue, text.data(), size, &count, timeout, &flags);
    EXPECT_EQ(done ? ERROR_SUCCESS : GetLastError(), error);
    EXPECT_EQ(text.substr(0, count), expected);
}

EVERY_MODE_SUITE(MessageQueues);

EVERY_MODE_TEST(MessageQueues, KeepMessagesSeparateAndInOrderUntilFull) {
    const HANDLE queue = MakeQueue(3);
    const auto writer = kernel::QueueWriter::Open(queue);
    ExpectRead(queue, "", ERROR_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(queue, 0), WAIT_TIMEOUT);
    for (const char* message : {"seventeen bytes..", "one", "", "sixteen bytes...", "lost"})
        Write(*writer, message);
    for (const char* message : {"one", ""}) {
        EXPECT_EQ(WaitForSingleObject(queue, 0), WAIT_OBJECT_0);
        ExpectRead(queue, message);
    }
    ExpectRead(queue, "si", ERROR_INSUFFICIENT_BUFFER, 0, 2);
    ExpectRead(queue, "", ERROR_TIMEOUT);  // the rest is lost
    CloseMsgQueue(queue);

    MSGQUEUEOPTIONS writing{sizeof writing, 0, 3, 16, FALSE};
    ExpectFails(ERROR_CALL_NOT_IMPLEMENTED, [&] { return CreateMsgQueue(nullptr, &writing); });
}

EVERY_MODE_TEST(MessageQueues, WakeAReaderForAMessageAndForTheEndOfTheWriter) {
    for (const DWORD flags : {0U, MSGQUEUE_ALLOW_BROKEN}) {
        const HANDLE queue = MakeQueue(3, flags);
        auto writer = kernel::QueueWriter::Open(queue);
        Crew crew([&] {
            Sleep(20);
            Write(*writer, "last words");
            Sleep(20);
            writer.reset();
        });
        ExpectRead(queue, "last words", ERROR_SUCCESS, INFINITE);
        if (flags == 0)
            ExpectRead(queue, "", ERROR_PIPE_NOT_CONNECTED, INFINITE);
        else
            ExpectRead(queue, "", ERROR_TIMEOUT, 100);
        crew.Join();
        CloseMsgQueue(queue);
    }
}

}  // namespace
}  // namespace tests
