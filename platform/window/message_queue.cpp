#include "platform/window/message_queue.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "platform/window/desktop.h"

namespace platform::window {
namespace {

void Lose(SentMessage& sent) {
    if (sent.state == SentMessage::State::kPending)
        sent.state = SentMessage::State::kLost;
}

}  // namespace

std::shared_ptr<MessageQueue> CurrentQueue(kernel::KernelLock&) {
    kernel::Thread& thread = kernel::CurrentThread();
    if (!thread.message_queue)
        thread.message_queue = std::make_shared<MessageQueue>();
    return std::static_pointer_cast<MessageQueue>(thread.message_queue);
}

void CloseCurrentQueue(kernel::KernelLock& lock) {
    kernel::Thread& thread = kernel::CurrentThread();
    if (!thread.message_queue)
        return;
    const std::shared_ptr<MessageQueue> queue = CurrentQueue(lock);
    for (const auto& sent : queue->sent)
        Lose(*sent);
    for (const auto& sent : queue->handled)
        Lose(*sent);
    queue->sent.clear();
    thread.message_queue = nullptr;
    kernel::Wake(lock);
}

bool Post(kernel::KernelLock& lock, MessageQueue& queue, HWND window, UINT message, WPARAM wparam,
          LPARAM lparam) {
    if (queue.posted.size() >= kMaxPosted)
        return false;
    MSG entry{};
    entry.hwnd = window;
    entry.message = message;
    entry.wParam = wparam;
    entry.lParam = lparam;
    entry.time = MessageTime();
    entry.pt = TheDesktop(lock).touch_position;
    queue.posted.push_back(entry);
    kernel::Wake(lock);
    return true;
}

void ForgetMessages(kernel::KernelLock& lock, MessageQueue& queue, HWND window) {
    std::erase_if(queue.posted, [&](const MSG& entry) { return entry.hwnd == window; });
    std::erase_if(queue.timers, [&](const Timer& timer) { return timer.window == window; });
    std::erase_if(queue.sent, [&](const std::shared_ptr<SentMessage>& sent) {
        if (sent->window != window)
            return false;
        Lose(*sent);
        return true;
    });
    kernel::Wake(lock);
}

DWORD MessageTime() {
    return static_cast<DWORD>(kernel::Now() / std::chrono::milliseconds(1));
}

}  // namespace platform::window
