#include <msgqueue.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "platform/kernel/kernel.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;
using platform::NamedKind;
using tests::Platform;

constexpr wchar_t kShared[] = L"shared";

HANDLE MakeQueue(LPCWSTR name) {
    MSGQUEUEOPTIONS options{sizeof(MSGQUEUEOPTIONS), 0, 3, 16, TRUE};
    return CreateMsgQueue(name, &options);
}

struct HandleCall {
    const char* name;
    bool (*succeeds)(HANDLE);
    bool accepts_event;
};

BYTE g_buffer[64];
DWORD g_count = 0;

const HandleCall kCalls[] = {
    {"CloseHandle", [](HANDLE handle) { return CloseHandle(handle) != 0; }, true},
    {"CloseMsgQueue", [](HANDLE handle) { return CloseMsgQueue(handle) != 0; }, false},
    {"SetEvent", [](HANDLE handle) { return SetEvent(handle) != 0; }, true},
    {"Wait", [](HANDLE handle) { return WaitForSingleObject(handle, 0) != WAIT_FAILED; }, true},
    {"WriteMsgQueue", [](HANDLE handle) { return WriteMsgQueue(handle, g_buffer, 9, 0, 0) != 0; },
     false},
    {"ReadFile",
     [](HANDLE handle) { return ReadFile(handle, g_buffer, 1, &g_count, nullptr) != 0; }, false},
};

TEST(Handles, WrongOnesAreErrorsAndNothingElse) {
    Platform platform;
    platform.Run([] {
        const HANDLE stale = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        EXPECT_TRUE(CloseHandle(stale));
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const HANDLE reader = MakeQueue(nullptr);
        for (const HandleCall& call : kCalls) {
            std::vector<HANDLE> wrong = {nullptr, INVALID_HANDLE_VALUE, stale,
                                         reinterpret_cast<HANDLE>(ULONG_PTR{0x123456789ABCDEF4})};
            if (!call.accepts_event)
                wrong.push_back(event);
            for (const HANDLE handle : wrong) {
                SetLastError(0);
                EXPECT_FALSE(call.succeeds(handle)) << call.name << ' ' << handle;
                EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE) << call.name << ' ' << handle;
            }
        }
        EXPECT_FALSE(WriteMsgQueue(reader, g_buffer, 9, 0, 0)) << "the queue's other end";
        EXPECT_TRUE(CloseHandle(reader));
        EXPECT_TRUE(CloseHandle(event));
    });
}

TEST(Handles, RunningOutIsAnErrorNotAMixUp) {
    Platform platform;
    platform.Run([] {
        std::vector<HANDLE> events;
        while (const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr))
            events.push_back(event);
        EXPECT_EQ(GetLastError(), ERROR_OUTOFMEMORY);
        for (const HANDLE open : events)
            EXPECT_TRUE(CloseHandle(open));
    });
}

struct Maker {
    NamedKind kind;
    HANDLE (*make)();
};

const Maker kMakers[] = {
    {NamedKind::kEvent, [] { return CreateEventW(nullptr, TRUE, TRUE, kShared); }},
    {NamedKind::kMutex, [] { return CreateMutexW(nullptr, TRUE, kShared); }},
    {NamedKind::kMessageQueue, [] { return MakeQueue(kShared); }},
};

// Of all kinds and processes there is one object of a name, until its last handle is closed.
TEST(Names, AreSharedByAllKindsAndWithTheNeighbours) {
    for (const Maker& maker : kMakers)
        for (const NamedKind there :
             {NamedKind::kNone, NamedKind::kEvent, NamedKind::kMutex, NamedKind::kMessageQueue}) {
            Platform platform;
            platform.board.neighbour.objects[kShared] = there;
            platform.Run([&] {
                const bool free = there == NamedKind::kNone;
                const bool fits = free || there == maker.kind;
                const HANDLE handle = maker.make();
                EXPECT_EQ(handle != nullptr, fits);
                EXPECT_EQ(GetLastError(), free   ? ERROR_SUCCESS
                                          : fits ? ERROR_ALREADY_EXISTS
                                                 : ERROR_INVALID_HANDLE);
                EXPECT_EQ(kernel::FindNamedKind(kShared), fits ? maker.kind : NamedKind::kNone);
                if (!fits)
                    return;
                // What stands in for another process's object has no state to work with.
                EXPECT_EQ(WaitForSingleObject(handle, 0) == WAIT_FAILED, !free);
                EXPECT_EQ(SetEvent(handle), free && maker.kind == NamedKind::kEvent);

                // A second handle keeps the name without asking again, the neighbour gone or not.
                platform.board.neighbour.objects.clear();
                const HANDLE second = maker.make();
                EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
                for (const Maker& other : kMakers)
                    EXPECT_TRUE(other.kind == maker.kind || other.make() == nullptr);
                EXPECT_EQ(platform.board.neighbour.questions, 1);
                EXPECT_TRUE(CloseHandle(second));
                EXPECT_TRUE(maker.kind == NamedKind::kMessageQueue ? CloseMsgQueue(handle)
                                                                   : CloseHandle(handle));
                const HANDLE third = maker.make();
                EXPECT_EQ(GetLastError(), ERROR_SUCCESS) << "the name is free again";
                EXPECT_TRUE(CloseHandle(third));
            });
        }
}

}  // namespace
