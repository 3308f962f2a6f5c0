#include <msgqueue.h>

#include <algorithm>
#include <deque>
#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/named_objects.h"
#include "platform/kernel/scheduler.h"

namespace platform::kernel {
namespace {

struct Message {
    std::vector<std::byte> bytes;
    DWORD flags;
};

// The queue that both ends share. Guarded by the kernel lock.
class MessageQueue final : public Object {
  public:
    explicit MessageQueue(const MSGQUEUEOPTIONS& options)
        : flags(options.dwFlags),
          capacity(options.dwMaxMessages),
          message_size(options.cbMaxMessage) {}

    NamedKind Kind() const override { return NamedKind::kMessageQueue; }

    bool Full() const { return capacity != 0 && messages.size() >= capacity; }
    // Without MSGQUEUE_ALLOW_BROKEN an end that is alone is told so.
    bool MayBeAlone() const { return (flags & MSGQUEUE_ALLOW_BROKEN) != 0; }

    const DWORD flags;
    const DWORD capacity;
    const DWORD message_size;
    std::deque<Message> messages;
    WORD readers = 0;
    WORD writers = 0;
};

// One handle on a queue: its read end or its write end.
class QueueEnd final : public Object {
  public:
    QueueEnd(std::shared_ptr<MessageQueue> shared, bool reads)
        : queue(std::move(shared)), read_access(reads) {
        ++(read_access ? queue->readers : queue->writers);
    }

    bool Waitable() const override { return true; }
    bool Signalled(const Thread&) const override {
        return read_access ? !queue->messages.empty() : !queue->Full();
    }

    void HandleClosed() override {
        KernelLock lock = LockKernel();
        --(read_access ? queue->readers : queue->writers);
        Wake(lock);
    }

    const std::shared_ptr<MessageQueue> queue;
    const bool read_access;
};

std::shared_ptr<QueueEnd> FindEnd(HANDLE handle, bool read_access) {
    std::shared_ptr<QueueEnd> end = FindObjectAs<QueueEnd>(handle);
    if (end && end->read_access != read_access) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return end;
}

bool ValidOptions(const MSGQUEUEOPTIONS* options) {
    return options && options->dwSize == sizeof(MSGQUEUEOPTIONS) && options->cbMaxMessage != 0;
}

}  // namespace
}  // namespace platform::kernel

using namespace platform::kernel;

HANDLE CreateMsgQueue(LPCWSTR name, LPMSGQUEUEOPTIONS options) {
    const ApiCall call("CreateMsgQueue");
    if (call.Fails())
        return nullptr;
    if (!ValidOptions(options)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> object = CreateNamed(lock, name, NamedKind::kMessageQueue, [&] {
        return std::make_shared<MessageQueue>(*options);
    });
    if (!object)
        return nullptr;
    if (auto queue = std::dynamic_pointer_cast<MessageQueue>(object))
        object = std::make_shared<QueueEnd>(std::move(queue), options->bReadAccess != 0);
    return OpenHandle(lock, std::move(object));
}

HANDLE OpenMsgQueue(HANDLE, HANDLE handle, LPMSGQUEUEOPTIONS options) {
    const ApiCall call("OpenMsgQueue");
    if (call.Fails())
        return nullptr;
    if (!options || options->dwSize != sizeof(MSGQUEUEOPTIONS)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::shared_ptr<QueueEnd> end = FindObjectAs<QueueEnd>(handle);
    if (!end)
        return nullptr;
    KernelLock lock = LockKernel();
    return OpenHandle(lock, std::make_shared<QueueEnd>(end->queue, options->bReadAccess != 0));
}

BOOL ReadMsgQueue(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD read, DWORD timeout,
                  DWORD* flags) {
    const ApiCall call("ReadMsgQueue");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<QueueEnd> end = FindEnd(handle, true);
    if (!end)
        return FALSE;
    if (!buffer || !read || !flags) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    MessageQueue& queue = *end->queue;
    const Time deadline = DeadlineAfter(timeout);
    KernelLock lock = LockKernel();
    const auto alone = [&] { return queue.writers == 0 && !queue.MayBeAlone(); };
    if (!Block(
            lock, [&] { return !queue.messages.empty() || alone(); }, deadline)) {
        SetLastError(ERROR_TIMEOUT);
        return FALSE;
    }
    if (queue.messages.empty()) {
        SetLastError(ERROR_PIPE_NOT_CONNECTED);
        return FALSE;
    }
    const Message message = std::move(queue.messages.front());
    queue.messages.pop_front();
    Wake(lock);
    *read = static_cast<DWORD>(std::min<std::size_t>(size, message.bytes.size()));
    *flags = message.flags;
    std::copy_n(message.bytes.begin(), *read, static_cast<std::byte*>(buffer));
    if (*read < message.bytes.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    return TRUE;
}

BOOL WriteMsgQueue(HANDLE handle, LPVOID buffer, DWORD size, DWORD timeout, DWORD flags) {
    const ApiCall call("WriteMsgQueue");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<QueueEnd> end = FindEnd(handle, false);
    if (!end)
        return FALSE;
    MessageQueue& queue = *end->queue;
    if (!buffer || size > queue.message_size) {
        SetLastError(buffer ? ERROR_INSUFFICIENT_BUFFER : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const Time deadline = DeadlineAfter(timeout);
    KernelLock lock = LockKernel();
    const auto alone = [&] { return queue.readers == 0 && !queue.MayBeAlone(); };
    if (!Block(
            lock, [&] { return !queue.Full() || alone(); }, deadline)) {
        SetLastError(ERROR_TIMEOUT);
        return FALSE;
    }
    if (alone()) {
        SetLastError(ERROR_PIPE_NOT_CONNECTED);
        return FALSE;
    }
    const auto* bytes = static_cast<const std::byte*>(buffer);
    const Message message{{bytes, bytes + size}, flags};
    // An alert goes before everything that waits.
    if ((flags & MSGQUEUE_MSGALERT) != 0)
        queue.messages.push_front(message);
    else
        queue.messages.push_back(message);
    Wake(lock);
    return TRUE;
}

BOOL CloseMsgQueue(HANDLE handle) {
    const ApiCall call("CloseMsgQueue");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Object> object = FindObject(handle);
    const bool stands_in = object && object->Kind() == NamedKind::kMessageQueue;
    if (!stands_in && !FindObjectAs<QueueEnd>(handle))
        return FALSE;
    return CloseHandle(handle);
}
