#include <msgqueue.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "platform/kernel/kernel.h"
#include "tests/support/platform_fixture.h"

namespace {

using tests::Platform;

MSGQUEUEOPTIONS g_queue_options{sizeof(MSGQUEUEOPTIONS), 0, 3, 16, TRUE};
BYTE g_buffer[64];
DWORD g_count = 0;

struct Call {
    const char* name;
    bool (*succeeds)(HANDLE);
    bool accepts_event;
};

const Call kCalls[] = {
    {"CloseHandle", [](HANDLE handle) { return CloseHandle(handle) != 0; }, true},
    {"CloseMsgQueue", [](HANDLE handle) { return CloseMsgQueue(handle) != 0; }, false},
    {"SetEvent", [](HANDLE handle) { return SetEvent(handle) != 0; }, true},
    {"ReleaseMutex", [](HANDLE handle) { return ReleaseMutex(handle) != 0; }, false},
    {"Wait", [](HANDLE handle) { return WaitForSingleObject(handle, 0) != WAIT_FAILED; }, true},
    {"ReadMsgQueue",
     [](HANDLE handle) { return ReadMsgQueue(handle, g_buffer, 9, &g_count, 0, &g_count) != 0; },
     false},
    {"WriteMsgQueue", [](HANDLE handle) { return WriteMsgQueue(handle, g_buffer, 9, 0, 0) != 0; },
     false},
    {"GetExitCodeThread", [](HANDLE handle) { return GetExitCodeThread(handle, &g_count) != 0; },
     false},
    {"SetThreadPriority", [](HANDLE handle) { return SetThreadPriority(handle, 3) != 0; }, false},
    {"ReadFile",
     [](HANDLE handle) { return ReadFile(handle, g_buffer, 1, &g_count, nullptr) != 0; }, false},
    {"GetCommState",
     [](HANDLE handle) { return GetCommState(handle, reinterpret_cast<DCB*>(g_buffer)) != 0; },
     false},
};

TEST(Handles, WrongOnesAreErrorsAndNothingElse) {
    Platform platform;
    platform.Run([] {
        const HANDLE stale = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        EXPECT_TRUE(CloseHandle(stale));
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const HANDLE reader = CreateMsgQueue(nullptr, &g_queue_options);
        for (const Call& call : kCalls) {
            std::vector<HANDLE> wrong = {nullptr, INVALID_HANDLE_VALUE, stale,
                                         reinterpret_cast<HANDLE>(ULONG_PTR{0x7FFFFFC4}),
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
        EXPECT_FALSE(CloseHandle(event)) << "closed twice";
    });
}

TEST(Handles, WaitsRefuseCountsThatMakeNoSense) {
    Platform platform;
    platform.Run([] {
        std::vector<HANDLE> handles(65, CreateEventW(nullptr, TRUE, TRUE, nullptr));
        const auto error_of = [&](DWORD count, BOOL all) {
            SetLastError(0);
            WaitForMultipleObjects(count, handles.data(), all, 0);
            return GetLastError();
        };
        EXPECT_EQ(error_of(64, FALSE), 0U);
        EXPECT_EQ(error_of(65, FALSE), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(error_of(0, FALSE), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(error_of(2, TRUE), ERROR_INVALID_PARAMETER);
        handles[63] = nullptr;
        EXPECT_EQ(error_of(64, FALSE), ERROR_INVALID_HANDLE) << "though the first is signalled";
        CloseHandle(handles[0]);
    });
}

TEST(Handles, NamesAreSharedByAllKindsAndFreeAfterTheLastHandle) {
    Platform platform;
    platform.Run([] {
        const wchar_t* const kName = L"Tolvane";
        const auto refused = [](HANDLE handle, DWORD error) {
            return !handle && GetLastError() == error;
        };
        SetLastError(5);
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
        const HANDLE again = CreateMutexW(nullptr, TRUE, kName);
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
        EXPECT_NE(again, mutex);
        EXPECT_FALSE(ReleaseMutex(again)) << "an existing mutex is not taken";
        EXPECT_TRUE(refused(CreateEventW(nullptr, FALSE, FALSE, kName), ERROR_INVALID_HANDLE));
        EXPECT_TRUE(refused(CreateMsgQueue(kName, &g_queue_options), ERROR_INVALID_HANDLE));
        EXPECT_TRUE(refused(OpenEventW(EVENT_ALL_ACCESS, FALSE, kName), ERROR_INVALID_HANDLE));
        EXPECT_TRUE(refused(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"tolvane"), ERROR_FILE_NOT_FOUND));

        CloseHandle(mutex);
        EXPECT_TRUE(refused(CreateEventW(nullptr, FALSE, FALSE, kName), ERROR_INVALID_HANDLE));
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
        while (const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr))
            events.push_back(event);
        EXPECT_EQ(GetLastError(), ERROR_OUTOFMEMORY);
        EXPECT_EQ(platform::kernel::HandleCount(), events.size());
        for (const HANDLE open : events)
            EXPECT_TRUE(CloseHandle(open));
    });
}

TEST(LastError, SurvivesDebugOutput) {
    Platform platform;
    platform.Run([] {
        SetLastError(77);
        NKDbgPrintfW(L"%s\t%S, failed, ErrorCode(%d)\r\n", L"App", "Function", GetLastError());
        EXPECT_EQ(GetLastError(), 77U);
    });
    EXPECT_EQ(platform.board.debug_output(), L"App\tFunction, failed, ErrorCode(77)\r\n");
}

}  // namespace
