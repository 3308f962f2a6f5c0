#include "platform/window/procedure.h"

#include <utility>

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/desktop.h"

namespace platform::window {
namespace {

// Drops a notification without a waiting sender when too many wait: a flood must not grow without
// bound.
void HandOver(kernel::KernelLock& lock, MessageQueue& queue, std::shared_ptr<SentMessage> sent) {
    const bool droppable = !sent->sender_waits && !sent->action;
    if (droppable && queue.sent.size() >= kMaxPosted)
        return;
    queue.sent.push_back(std::move(sent));
    kernel::Wake(lock);
}

// Handles messages sent to the calling thread meanwhile.
void WaitForReply(kernel::KernelLock& lock, const SentMessage& sent) {
    const std::shared_ptr<MessageQueue> own = CurrentQueue(lock);
    while (sent.state == SentMessage::State::kPending) {
        kernel::Block(
            lock, [&] { return sent.state != SentMessage::State::kPending || !own->sent.empty(); },
            kernel::kNever);
        if (sent.state == SentMessage::State::kPending)
            HandleSentMessage(lock, *own);
    }
}

}  // namespace

LRESULT CallProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    WNDPROC procedure = nullptr;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        if (const auto target = FindWindowObject(lock, window))
            procedure = target->procedure;
    }
    if (!procedure)
        return 0;
    const kernel::ProgramCode program_code;
    return procedure(window, message, wparam, lparam);
}

void Notify(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = FindWindowObject(lock, window);
    if (!target)
        return;
    if (IsOwn(lock, *target)) {
        lock.unlock();
        CallProcedure(window, message, wparam, lparam);
        return;
    }
    auto sent = std::make_shared<SentMessage>();
    sent->window = window;
    sent->message = message;
    sent->wparam = wparam;
    sent->lparam = lparam;
    HandOver(lock, *target->queue, std::move(sent));
}

void NotifyPosition(const WINDOWPOS& position) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = FindWindowObject(lock, position.hwnd);
    if (!target)
        return;
    auto sent = std::make_shared<SentMessage>();
    sent->window = position.hwnd;
    sent->message = WM_WINDOWPOSCHANGED;
    sent->position = position;
    sent->lparam = reinterpret_cast<LPARAM>(&*sent->position);
    if (!IsOwn(lock, *target)) {
        HandOver(lock, *target->queue, std::move(sent));
        return;
    }
    lock.unlock();
    CallProcedure(sent->window, sent->message, 0, sent->lparam);
}

void RunOn(const std::shared_ptr<MessageQueue>& queue, std::function<void()> action) {
    kernel::KernelLock lock = kernel::LockKernel();
    if (queue == kernel::CurrentThread().message_queue) {
        lock.unlock();
        action();
        return;
    }
    auto sent = std::make_shared<SentMessage>();
    sent->action = std::move(action);
    HandOver(lock, *queue, std::move(sent));
}

void RunOnAndWait(kernel::KernelLock& lock, const Window& window, std::function<void()> action) {
    const auto sent = std::make_shared<SentMessage>();
    sent->window = window.handle;
    sent->action = std::move(action);
    sent->sender_waits = true;
    HandOver(lock, *window.queue, sent);
    WaitForReply(lock, *sent);
}

bool HandleSentMessage(kernel::KernelLock& lock, MessageQueue& queue) {
    if (queue.sent.empty())
        return false;
    const std::shared_ptr<SentMessage> sent = queue.sent.front();
    queue.sent.pop_front();
    queue.handled.push_back(sent);
    lock.unlock();
    LRESULT result = 0;
    if (sent->action)
        sent->action();
    else
        result = CallProcedure(sent->window, sent->message, sent->wparam, sent->lparam);
    lock.lock();
    queue.handled.pop_back();
    if (sent->state == SentMessage::State::kPending) {
        sent->state = SentMessage::State::kHandled;
        sent->result = result;
    }
    kernel::Wake(lock);
    return true;
}

bool SendAndWait(HWND window, UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
    result = 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = RequireWindow(lock, window);
    if (!target)
        return false;
    if (IsOwn(lock, *target)) {
        lock.unlock();
        result = CallProcedure(window, message, wparam, lparam);
        return true;
    }

    const auto sent = std::make_shared<SentMessage>();
    sent->window = window;
    sent->message = message;
    sent->wparam = wparam;
    sent->lparam = lparam;
    sent->sender_waits = true;
    HandOver(lock, *target->queue, sent);
    WaitForReply(lock, *sent);
    if (sent->state == SentMessage::State::kLost) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return false;
    }
    result = sent->result;
    return true;
}

}  // namespace platform::window
