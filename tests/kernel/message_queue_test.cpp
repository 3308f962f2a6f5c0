#include "platform/kernel/message_queue.h"

#include "tests/support/platform_test.h"

namespace tests {
namespace {

// A queue for messages of up to 16 bytes, and its writer.
struct Queue {
    explicit Queue(DWORD most_messages, DWORD flags = 0) {
        MSGQUEUEOPTIONS options{sizeof options, flags, most_messages, 16, TRUE};
        reader = CreateMsgQueue(nullptr, &options);
        writer = kernel::QueueWriter::Open(reader);
    }
    ~Queue() { CloseMsgQueue(reader); }
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    void Write(const std::string& text) const { writer->Write(std::as_bytes(std::span(text))); }
    void ExpectRead(const std::string& expected, DWORD error = ERROR_SUCCESS, DWORD timeout = 0,
                    DWORD size = 16) const {
        std::string text(size, '?');
        DWORD count = 0;
        DWORD flags = 0;
        const BOOL done = ReadMsgQueue(reader, text.data(), size, &count, timeout, &flags);
        EXPECT_EQ(done ? ERROR_SUCCESS : GetLastError(), error);
        EXPECT_EQ(text.substr(0, count), expected);
    }

    HANDLE reader = nullptr;
    std::unique_ptr<kernel::QueueWriter> writer;
};

EVERY_MODE_SUITE(MessageQueues);

EVERY_MODE_TEST(MessageQueues, KeepMessagesSeparateAndInOrderUntilFull) {
    Queue queue(3);
    queue.ExpectRead("", ERROR_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(queue.reader, 0), WAIT_TIMEOUT);
    for (const char* message : {"seventeen bytes..", "one", "", "sixteen bytes...", "lost"})
        queue.Write(message);
    for (const char* message : {"one", ""}) {
        EXPECT_EQ(WaitForSingleObject(queue.reader, 0), WAIT_OBJECT_0);
        queue.ExpectRead(message);
    }
    queue.ExpectRead("si", ERROR_INSUFFICIENT_BUFFER, 0, 2);
    queue.ExpectRead("", ERROR_TIMEOUT);  // the rest is lost

    MSGQUEUEOPTIONS writing{sizeof writing, 0, 3, 16, FALSE};
    ExpectFails(ERROR_CALL_NOT_IMPLEMENTED, [&] { return CreateMsgQueue(nullptr, &writing); });
    ExpectFails(ERROR_INVALID_HANDLE, [] { return kernel::QueueWriter::Open(nullptr) != nullptr; });
}

EVERY_MODE_TEST(MessageQueues, WakeAReaderForAMessageAndForTheEndOfTheWriter) {
    for (const DWORD flags : {0U, MSGQUEUE_ALLOW_BROKEN}) {
        const bool fails = flags == 0;
        Queue queue(3, flags);
        Crew crew([&] {
            Sleep(20);
            queue.Write("last words");
            Sleep(20);
            queue.writer.reset();
        });
        queue.ExpectRead("last words", ERROR_SUCCESS, INFINITE);
        const auto start = kernel::Now();
        queue.ExpectRead("", fails ? ERROR_PIPE_NOT_CONNECTED : ERROR_TIMEOUT,
                         fails ? INFINITE : 100);
        EXPECT_TRUE(fails || kernel::Now() - start >= 100ms);
    }
}

}  // namespace
}  // namespace tests
