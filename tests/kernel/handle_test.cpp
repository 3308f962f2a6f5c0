#include "tests/support/platform_test.h"

namespace tests {
namespace {

using platform::NamedKind;

constexpr wchar_t kShared[] = L"shared";

HANDLE MakeQueue(LPCWSTR name) {
    MSGQUEUEOPTIONS options{sizeof(MSGQUEUEOPTIONS), 0, 3, 16, TRUE};
    return CreateMsgQueue(name, &options);
}

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
TEST(Names, AreSharedByAllKindsAndProcesses) {
    const std::pair<NamedKind, HANDLE (*)()> makers[] = {
        {NamedKind::kEvent, [] { return CreateEventW(nullptr, TRUE, TRUE, kShared); }},
        {NamedKind::kMutex, [] { return CreateMutexW(nullptr, TRUE, kShared); }},
        {NamedKind::kMessageQueue, [] { return MakeQueue(kShared); }},
    };
    for (const auto& [kind, make] : makers)
        for (const NamedKind there :
             {NamedKind::kNone, NamedKind::kEvent, NamedKind::kMutex, NamedKind::kMessageQueue}) {
            Platform platform;
            platform.board.other_process.objects[kShared] = there;
            platform.Run([&, kind = kind, make = make] {
                const bool free = there == NamedKind::kNone;
                const bool fits = free || there == kind;
                const HANDLE handle = make();
                EXPECT_EQ(handle != nullptr, fits);
                EXPECT_EQ(GetLastError(), free   ? ERROR_SUCCESS
                                          : fits ? ERROR_ALREADY_EXISTS
                                                 : ERROR_INVALID_HANDLE);
                EXPECT_EQ(kernel::FindNamedKind(kShared), fits ? kind : NamedKind::kNone);
                if (!fits)
                    return;
                // The stand-in for another process's object has no state.
                EXPECT_EQ(WaitForSingleObject(handle, 0) == WAIT_FAILED, !free);
                EXPECT_EQ(SetEvent(handle), free && kind == NamedKind::kEvent);

                // A second handle keeps the name without another question, even when the other
                // process has ended.
                platform.board.other_process.objects.clear();
                const HANDLE second = make();
                EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
                for (const auto& [other_kind, make_other] : makers)
                    EXPECT_TRUE(other_kind == kind || make_other() == nullptr);
                EXPECT_EQ(platform.board.other_process.questions, 1);
                EXPECT_TRUE(CloseHandle(second));
                EXPECT_TRUE(kind == NamedKind::kMessageQueue ? CloseMsgQueue(handle)
                                                             : CloseHandle(handle));
                const HANDLE third = make();
                EXPECT_EQ(GetLastError(), ERROR_SUCCESS) << "the name is free again";
                EXPECT_TRUE(CloseHandle(third));
            });
        }
}

}  // namespace
}  // namespace tests
