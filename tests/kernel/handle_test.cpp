#include <msgqueue.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "platform/kernel/kernel.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;
using tests::Platform;

MSGQUEUEOPTIONS QueueOptions() {
    return {sizeof(MSGQUEUEOPTIONS), 0, 3, 16, TRUE};
}

TEST(Handles, WrongOnesAreErrorsAndNothingElse) {
    Platform platform;
    platform.Run([] {
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
        MSGQUEUEOPTIONS options = QueueOptions();
        const HANDLE reader = CreateMsgQueue(nullptr, &options);
        const HANDLE stale = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        EXPECT_TRUE(CloseHandle(stale));
        const HANDLE successor = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        EXPECT_NE(successor, stale);

        struct Call {
            const char* name;
            bool (*fails)(HANDLE);
            std::vector<HANDLE> wrong_kind;
        };
        static BYTE buffer[16];
        static DWORD count = 0;
        const Call calls[] = {
            {"CloseHandle", [](HANDLE handle) { return !CloseHandle(handle); }, {}},
            {"CloseMsgQueue", [](HANDLE handle) { return !CloseMsgQueue(handle); }, {event}},
            {"SetEvent", [](HANDLE handle) { return !SetEvent(handle); }, {mutex, reader}},
            {"ReleaseMutex", [](HANDLE handle) { return !ReleaseMutex(handle); }, {event}},
            {"WaitForSingleObject",
             [](HANDLE handle) { return WaitForSingleObject(handle, 0) == WAIT_FAILED; },
             {}},
            {"ReadMsgQueue",
             [](HANDLE handle) { return !ReadMsgQueue(handle, buffer, 16, &count, 0, &count); },
             {event}},
            {"WriteMsgQueue",
             [](HANDLE handle) { return !WriteMsgQueue(handle, buffer, 16, 0, 0); },
             {event, reader}},
            {"GetExitCodeThread",
             [](HANDLE handle) { return !GetExitCodeThread(handle, &count); },
             {event}},
            {"SetThreadPriority",
             [](HANDLE handle) { return !SetThreadPriority(handle, 3); },
             {event}},
            {"GetThreadPriority",
             [](HANDLE handle) {
                 return GetThreadPriority(handle) == THREAD_PRIORITY_ERROR_RETURN;
             },
             {event}},
            {"ReadFile",
             [](HANDLE handle) { return !ReadFile(handle, buffer, 1, &count, nullptr); },
             {event}},
            {"GetCommState",
             [](HANDLE handle) {
                 DCB settings;
                 return !GetCommState(handle, &settings);
             },
             {event}},
        };
        for (const Call& call : calls) {
            std::vector<HANDLE> bad = call.wrong_kind;
            bad.insert(bad.end(), {nullptr, INVALID_HANDLE_VALUE, stale,
                                   reinterpret_cast<HANDLE>(ULONG_PTR{0x7FFFFFC4}),
                                   reinterpret_cast<HANDLE>(ULONG_PTR{0x123456789ABCDEF4})});
            for (const HANDLE handle : bad) {
                SetLastError(0);
                EXPECT_TRUE(call.fails(handle)) << call.name << ' ' << handle;
                EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE) << call.name << ' ' << handle;
            }
        }
        for (const HANDLE handle : {event, mutex, reader, successor})
            EXPECT_TRUE(CloseHandle(handle));
        EXPECT_FALSE(CloseHandle(event)) << "closed twice";
        EXPECT_EQ(kernel::HandleCount(), 0U);
    });
}

TEST(Handles, WaitsRefuseCountsAndHandlesThatMakeNoSense) {
    Platform platform;
    platform.Run([] {
        const HANDLE event = CreateEventW(nullptr, TRUE, TRUE, nullptr);
        std::vector<HANDLE> handles(65, event);
        struct Case {
            DWORD count;
            const HANDLE* handles;
            BOOL all;
            DWORD result;
            DWORD error;
        };
        const HANDLE with_null[] = {event, nullptr};
        const Case cases[] = {
            {64, handles.data(), FALSE, WAIT_OBJECT_0, 0},
            {65, handles.data(), FALSE, WAIT_FAILED, ERROR_INVALID_PARAMETER},
            {0, handles.data(), FALSE, WAIT_FAILED, ERROR_INVALID_PARAMETER},
            {1, nullptr, FALSE, WAIT_FAILED, ERROR_INVALID_PARAMETER},
            {2, handles.data(), TRUE, WAIT_FAILED, ERROR_INVALID_PARAMETER},
            {2, with_null, FALSE, WAIT_FAILED, ERROR_INVALID_HANDLE},
        };
        for (const Case& row : cases) {
            SetLastError(0);
            EXPECT_EQ(WaitForMultipleObjects(row.count, row.handles, row.all, 0), row.result);
            EXPECT_EQ(GetLastError(), row.error);
        }
        CloseHandle(event);
    });
}

TEST(Handles, NamesAreSharedByAllKindsAndFreeAfterTheLastHandle) {
    Platform platform;
    platform.Run([] {
        const wchar_t* const kName = L"Tolvane";
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS) << "also after an earlier error";
        const HANDLE again = CreateMutexW(nullptr, TRUE, kName);
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
        EXPECT_NE(again, mutex);
        EXPECT_FALSE(ReleaseMutex(again)) << "an existing mutex is not taken";

        MSGQUEUEOPTIONS options = QueueOptions();
        SetLastError(0);
        EXPECT_EQ(CreateEventW(nullptr, FALSE, FALSE, kName), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(CreateMsgQueue(kName, &options), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(OpenEventW(EVENT_ALL_ACCESS, FALSE, kName), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"tolvane"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);

        CloseHandle(mutex);
        SetLastError(0);
        EXPECT_EQ(CreateEventW(nullptr, FALSE, FALSE, kName), nullptr) << "one handle is left";
        CloseHandle(again);
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, kName);
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
        const HANDLE opened = OpenEventW(EVENT_ALL_ACCESS, FALSE, kName);
        SetEvent(opened);
        EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0) << "one event, two handles";
        CloseHandle(event);
        CloseHandle(opened);
    });
}

TEST(Handles, RunningOutIsAnErrorNotAMixUp) {
    Platform platform;
    platform.Run([] {
        std::vector<HANDLE> events;
        HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        for (; event && events.size() < 100'000;
             event = CreateEventW(nullptr, FALSE, FALSE, nullptr))
            events.push_back(event);
        EXPECT_EQ(event, nullptr);
        EXPECT_EQ(GetLastError(), ERROR_OUTOFMEMORY);
        EXPECT_EQ(kernel::HandleCount(), events.size());
        for (const HANDLE open : events)
            EXPECT_TRUE(CloseHandle(open));
    });
}

TEST(Handles, ShutdownCountsAndClosesWhatWasLeft) {
    Platform platform;
    platform.Run([] {
        CreateEventW(nullptr, FALSE, FALSE, L"left");
        MSGQUEUEOPTIONS options = QueueOptions();
        CreateMsgQueue(L"queue", &options);
    });
    platform.AllowHandles(2);
}

TEST(LastError, BelongsToTheThreadAndSurvivesDebugOutput) {
    Platform platform;
    platform.Run([] {
        SetLastError(77);
        const HANDLE thread = CreateThread(
            nullptr, 0,
            [](LPVOID) -> DWORD {
                const DWORD fresh = GetLastError();
                SetLastError(5);
                return fresh;
            },
            nullptr, 0, nullptr);
        WaitForSingleObject(thread, INFINITE);
        DWORD fresh = 1;
        GetExitCodeThread(thread, &fresh);
        EXPECT_EQ(fresh, 0U);
        CloseHandle(thread);
        NKDbgPrintfW(L"%s\t%S, failed, ErrorCode(%d)\r\n", L"App", "Function", GetLastError());
        EXPECT_EQ(GetLastError(), 77U);
    });
    EXPECT_EQ(platform.board.debug_output(), L"App\tFunction, failed, ErrorCode(77)\r\n");
}

}  // namespace
