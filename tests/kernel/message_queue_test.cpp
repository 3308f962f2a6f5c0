#include "tests/support/platform_test.h"

namespace tests {
namespace {

// Both ends of a queue for messages of up to 16 bytes.
struct Queue {
    explicit Queue(DWORD most_messages, DWORD flags = 0) {
        MSGQUEUEOPTIONS options{sizeof options, flags, most_messages, 16, TRUE};
        reader = CreateMsgQueue(nullptr, &options);
        options.bReadAccess = FALSE;
        writer = OpenMsgQueue(GetCurrentProcess(), reader, &options);
    }
    ~Queue() {
        CloseMsgQueue(reader);
        CloseMsgQueue(writer);
    }
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    // The call's last error, ERROR_SUCCESS when it succeeded.
    DWORD Write(std::string text, DWORD timeout = 0, DWORD flags = 0) const {
        const auto size = static_cast<DWORD>(text.size());
        return WriteMsgQueue(writer, text.data(), size, timeout, flags) ? 0 : GetLastError();
    }
    void ExpectRead(std::string expected, DWORD error = ERROR_SUCCESS, DWORD timeout = 0,
                    DWORD size = 16) const {
        std::string text(size, '?');
        DWORD count = 0;
        DWORD flags = 0;
        const BOOL done = ReadMsgQueue(reader, text.data(), size, &count, timeout, &flags);
        EXPECT_EQ(done ? ERROR_SUCCESS : GetLastError(), error);
        EXPECT_EQ(text.substr(0, count), expected);
    }

    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
};

EVERY_MODE_SUITE(MessageQueues);

EVERY_MODE_TEST(MessageQueues, KeepMessagesApartAndInOrderUntilFull) {
    Queue queue(4);
    queue.ExpectRead("", ERROR_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(queue.reader, 0), WAIT_TIMEOUT);
    for (const char* message : {"one", "", "sixteen bytes..."})
        EXPECT_EQ(queue.Write(message), 0U);
    EXPECT_EQ(WaitForSingleObject(queue.writer, 0), WAIT_OBJECT_0);
    EXPECT_EQ(queue.Write("urgent", 0, MSGQUEUE_MSGALERT), 0U);
    EXPECT_EQ(queue.Write("five"), ERROR_TIMEOUT);
    EXPECT_EQ(queue.Write("seventeen bytes.."), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(WaitForSingleObject(queue.writer, 0), WAIT_TIMEOUT);
    for (const char* message : {"urgent", "one", ""}) {
        EXPECT_EQ(WaitForSingleObject(queue.reader, 0), WAIT_OBJECT_0);
        queue.ExpectRead(message);
    }
    queue.ExpectRead("si", ERROR_INSUFFICIENT_BUFFER, 0, 2);
    queue.ExpectRead("", ERROR_TIMEOUT);  // the rest is lost
}

EVERY_MODE_TEST(MessageQueues, WaitForMessagesAndForRoom) {
    Queue queue(1);
    const Crew crew([&] {
        for (int number = 0; number < 300; ++number)
            EXPECT_EQ(queue.Write(std::to_string(number), INFINITE), 0U);
    });
    for (int number = 0; number < 300; ++number)
        queue.ExpectRead(std::to_string(number), ERROR_SUCCESS, INFINITE);
    const auto start = kernel::Now();
    queue.ExpectRead("", ERROR_TIMEOUT, 250);
    EXPECT_GE(kernel::Now() - start, 250ms);
}

EVERY_MODE_TEST(MessageQueues, TellAnEndThatItIsAloneUnlessItMayBe) {
    for (const DWORD flags : {0U, MSGQUEUE_ALLOW_BROKEN}) {
        const bool told = flags == 0;
        Queue queue(3, flags);
        queue.Write("last words");
        const HANDLE heard = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        Crew crew([&] {
            Sleep(20);
            CloseMsgQueue(queue.writer);
            // The closing itself must tell, not the end of this thread.
            WaitForSingleObject(heard, INFINITE);
        });
        queue.ExpectRead("last words", ERROR_SUCCESS, INFINITE);
        queue.ExpectRead("", told ? ERROR_PIPE_NOT_CONNECTED : ERROR_TIMEOUT,
                         told ? INFINITE : 100);
        SetEvent(heard);
        crew.Join();
        CloseHandle(heard);
        Queue other(3, flags);
        CloseMsgQueue(other.reader);
        EXPECT_EQ(other.Write("to nobody"), told ? ERROR_PIPE_NOT_CONNECTED : 0U);
    }
}

}  // namespace
}  // namespace tests
