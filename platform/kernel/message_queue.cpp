#include "platform/kernel/message_queue.h"

#include <msgqueue.h>

#include <algorithm>
#include <deque>
#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/named_objects.h"
#include "platform/kernel/scheduler.h"

namespace platform::kernel {

// Guarded by the kernel lock.
class MessageQueue final : public Object {
  public:
    explicit MessageQueue(const MSGQUEUEOPTIONS& options)
        : needs_writer((options.dwFlags & MSGQUEUE_ALLOW_BROKEN) == 0),
          capacity(options.dwMaxMessages),
          message_size(options.cbMaxMessage) {}

    NamedKind Kind() const override { return NamedKind::kMessageQueue; }
    bool Waitable() const override { return true; }
    bool Signalled(const Thread&) const override { return !messages.empty(); }

    // Reading an empty queue fails, unless its creator allowed it to be without a writer.
    bool IsBroken() const { return needs_writer && writers == 0; }

    const bool needs_writer;
    const DWORD capacity;  // 0: no limit
    const DWORD message_size;
    std::deque<std::vector<std::byte>> messages;
    unsigned writers = 0;
};

QueueWriter::QueueWriter(std::shared_ptr<MessageQueue> queue) : queue_(std::move(queue)) {
    KernelLock lock = LockKernel();
    ++queue_->writers;
}

QueueWriter::~QueueWriter() {
    KernelLock lock = LockKernel();
    --queue_->writers;
    Wake(lock);
}

std::unique_ptr<QueueWriter> QueueWriter::Open(HANDLE handle) {
    auto queue = FindObjectAs<MessageQueue>(handle);
    return queue ? std::unique_ptr<QueueWriter>(new QueueWriter(std::move(queue))) : nullptr;
}

void QueueWriter::Write(std::span<const std::byte> message) {
    KernelLock lock = LockKernel();
    const bool full = queue_->capacity != 0 && queue_->messages.size() >= queue_->capacity;
    if (full || message.size() > queue_->message_size)
        return;
    queue_->messages.emplace_back(message.begin(), message.end());
    Wake(lock);
}

}  // namespace platform::kernel

using namespace platform::kernel;

HANDLE CreateMsgQueue(LPCWSTR name, LPMSGQUEUEOPTIONS options) {
    const ApiCall call("CreateMsgQueue");
    if (call.Fails())
        return nullptr;
    if (!options || options->dwSize != sizeof *options || options->cbMaxMessage == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (!options->bReadAccess) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return nullptr;
    }
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> queue = CreateNamed(lock, name, NamedKind::kMessageQueue, [&] {
        return std::make_shared<MessageQueue>(*options);
    });
    return queue ? OpenHandle(lock, std::move(queue)) : nullptr;
}

BOOL ReadMsgQueue(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD read, DWORD timeout,
                  DWORD* flags) {
    const ApiCall call("ReadMsgQueue");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<MessageQueue> queue = FindObjectAs<MessageQueue>(handle);
    if (!queue)
        return FALSE;
    if (!buffer || !read || !flags) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const Time deadline = DeadlineAfter(timeout);
    KernelLock lock = LockKernel();
    if (!Block(
            lock, [&] { return !queue->messages.empty() || queue->IsBroken(); }, deadline)) {
        SetLastError(ERROR_TIMEOUT);
        return FALSE;
    }
    if (queue->messages.empty()) {
        SetLastError(ERROR_PIPE_NOT_CONNECTED);
        return FALSE;
    }
    const std::vector<std::byte> message = std::move(queue->messages.front());
    queue->messages.pop_front();
    *read = static_cast<DWORD>(std::min<std::size_t>(size, message.size()));
    *flags = 0;
    std::copy_n(message.begin(), *read, static_cast<std::byte*>(buffer));
    if (*read < message.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    return TRUE;
}

BOOL CloseMsgQueue(HANDLE handle) {
    const ApiCall call("CloseMsgQueue");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Object> object = FindObject(handle);
    if (!object || object->Kind() != NamedKind::kMessageQueue) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return CloseHandle(handle);
}
