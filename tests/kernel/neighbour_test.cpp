#include <msgqueue.h>
#include <windows.h>

#include <gtest/gtest.h>

#include "platform/kernel/kernel.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;
using platform::NamedKind;
using tests::Platform;

constexpr wchar_t kShared[] = L"shared";

struct Maker {
    NamedKind kind;
    HANDLE (*make)();
};

const Maker kMakers[] = {
    {NamedKind::kEvent, [] { return CreateEventW(nullptr, TRUE, TRUE, kShared); }},
    {NamedKind::kMutex, [] { return CreateMutexW(nullptr, TRUE, kShared); }},
    {NamedKind::kMessageQueue,
     [] {
         MSGQUEUEOPTIONS options{sizeof(MSGQUEUEOPTIONS), 0, 3, 16, TRUE};
         return CreateMsgQueue(kShared, &options);
     }},
};

TEST(Neighbours, ShareTheNamesOfTheirObjects) {
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
                EXPECT_EQ(platform.board.neighbour.questions, 1);
                const bool queue = maker.kind == NamedKind::kMessageQueue;
                EXPECT_TRUE(queue ? CloseMsgQueue(second) : CloseHandle(second));
                EXPECT_TRUE(queue ? CloseMsgQueue(handle) : CloseHandle(handle));

                const HANDLE third = maker.make();
                EXPECT_EQ(GetLastError(), ERROR_SUCCESS) << "the name is free again";
                EXPECT_TRUE(CloseHandle(third));
            });
        }
}

TEST(Neighbours, EventsAreOpenedByName) {
    Platform platform;
    platform.Run([&] {
        for (const auto& [there, error] : {std::pair{NamedKind::kNone, ERROR_FILE_NOT_FOUND},
                                           {NamedKind::kMutex, ERROR_INVALID_HANDLE},
                                           {NamedKind::kEvent, ERROR_SUCCESS}}) {
            platform.board.neighbour.objects[kShared] = there;
            SetLastError(ERROR_SUCCESS);
            const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, kShared);
            EXPECT_EQ(GetLastError(), error);
            EXPECT_EQ(event != nullptr, there == NamedKind::kEvent);
            EXPECT_EQ(event != nullptr, CloseHandle(event) != FALSE);
        }
    });
}

}  // namespace
