#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>

namespace platform::kernel {

class MessageQueue;

// The writing end of a queue that a program reads. Any thread, without locks.
class QueueWriter {
  public:
    // Null with ERROR_INVALID_HANDLE when the handle is none of a queue.
    static std::unique_ptr<QueueWriter> Open(HANDLE queue);
    ~QueueWriter();
    QueueWriter(const QueueWriter&) = delete;
    QueueWriter& operator=(const QueueWriter&) = delete;

    // A full queue loses the message, and so does one for shorter messages. Does not wait.
    void Write(std::span<const std::byte> message);

  private:
    explicit QueueWriter(std::shared_ptr<MessageQueue> queue);

    const std::shared_ptr<MessageQueue> queue_;
};

}  // namespace platform::kernel
