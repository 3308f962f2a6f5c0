#include <msgqueue.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "platform/kernel/clock.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

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
    DWORD Read(std::string& text, DWORD timeout = 0, DWORD size = 16) const {
        text.assign(size, '?');
        DWORD count = 0;
        DWORD flags = 0;
        const BOOL done = ReadMsgQueue(reader, text.data(), size, &count, timeout, &flags);
        text.resize(count);
        return done ? 0 : GetLastError();
    }

    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
};

class MessageQueues : public tests::InEveryMode {
  protected:
    tests::Platform platform{GetParam().options};
};

TEST_P(MessageQueues, KeepMessagesApartAndInOrderUntilFull) {
    platform.Run([] {
        Queue queue(4);
        std::string text;
        EXPECT_EQ(queue.Read(text), ERROR_TIMEOUT);
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
            EXPECT_EQ(queue.Read(text), 0U);
            EXPECT_EQ(text, message);
        }
        EXPECT_EQ(queue.Read(text, 0, 2), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(text, "si");
        EXPECT_EQ(queue.Read(text), ERROR_TIMEOUT) << "the rest is lost";
    });
}

TEST_P(MessageQueues, WaitForMessagesAndForRoom) {
    platform.Run([] {
        Queue queue(1);
        tests::Crew crew;
        crew.Start([&] {
            for (int number = 0; number < 300; ++number)
                EXPECT_EQ(queue.Write(std::to_string(number), INFINITE), 0U);
        });
        std::string text;
        for (int number = 0; number < 300; ++number) {
            EXPECT_EQ(queue.Read(text, INFINITE), 0U);
            EXPECT_EQ(text, std::to_string(number));
        }
        const auto start = platform::kernel::Now();
        EXPECT_EQ(queue.Read(text, 250), ERROR_TIMEOUT);
        EXPECT_GE(platform::kernel::Now() - start, std::chrono::milliseconds(250));
    });
}

TEST_P(MessageQueues, TellAnEndThatItIsAloneUnlessItMayBe) {
    platform.Run([] {
        for (const DWORD flags : {0U, MSGQUEUE_ALLOW_BROKEN}) {
            const bool told = flags == 0;
            Queue queue(3, flags);
            queue.Write("last words");
            const HANDLE heard = CreateEventW(nullptr, FALSE, FALSE, nullptr);
            tests::Crew crew;
            crew.Start([&] {
                Sleep(20);
                CloseMsgQueue(queue.writer);
                // The closing itself must tell, not the end of this thread.
                WaitForSingleObject(heard, INFINITE);
            });
            std::string text;
            EXPECT_EQ(queue.Read(text, INFINITE), 0U);
            EXPECT_EQ(queue.Read(text, told ? INFINITE : 100),
                      told ? ERROR_PIPE_NOT_CONNECTED : ERROR_TIMEOUT);
            SetEvent(heard);
            crew.Join();
            CloseHandle(heard);
            Queue other(3, flags);
            CloseMsgQueue(other.reader);
            EXPECT_EQ(other.Write("to nobody"), told ? ERROR_PIPE_NOT_CONNECTED : 0U);
        }
    });
}

INSTANTIATE_IN_EVERY_MODE(MessageQueues);

}  // namespace
