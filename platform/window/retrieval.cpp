#include "platform/window/retrieval.h"

#include <algorithm>

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/wait.h"
#include "platform/window/activation.h"
#include "platform/window/procedure.h"

namespace platform::window {

namespace {

std::optional<MSG> NextPosted(MessageQueue& queue, const MessageFilter& filter, bool remove) {
    const auto entry =
        std::find_if(queue.posted.begin(), queue.posted.end(), [&](const MSG& posted) {
            return filter.Accepts(QS_POSTMESSAGE, posted.hwnd, posted.message);
        });
    if (entry == queue.posted.end())
        return std::nullopt;
    const MSG message = *entry;
    if (remove)
        queue.posted.erase(entry);
    return message;
}

// WM_QUIT passes every filter of windows and numbers.
std::optional<MSG> NextQuit(kernel::KernelLock& lock, MessageQueue& queue,
                            const MessageFilter& filter, bool remove) {
    if (!queue.quit_code || (filter.kinds & QS_POSTMESSAGE) == 0)
        return std::nullopt;
    MSG message{};
    message.message = WM_QUIT;
    message.wParam = static_cast<WPARAM>(*queue.quit_code);
    message.time = MessageTime();
    message.pt = TheDesktop(lock).touch_position;
    if (remove)
        queue.quit_code.reset();
    return message;
}

bool NamesNoWindow(kernel::KernelLock& lock, const MessageFilter& filter) {
    return filter.window != NULL && !FindWindowObject(lock, filter.window);
}

// A press brings its window forward before the window receives it.
void ActivateByTouch(const MSG& message) {
    if (message.message == WM_LBUTTONDOWN)
        ActivateTouched(message.hwnd);
}

}  // namespace

bool MessageFilter::Accepts(DWORD kind, HWND of_window, UINT message) const {
    if ((kinds & kind) == 0)
        return false;
    if (thread_only ? of_window != NULL : window != NULL && of_window != window)
        return false;
    return (first == 0 && last == 0) || (message >= first && message <= last);
}

std::optional<MSG> NextMessage(kernel::KernelLock& lock, MessageQueue& queue,
                               const MessageFilter& filter, bool remove) {
    const auto requested_paint = [&] {
        return NextPaintMessage(lock, queue, filter, remove, PaintKind::kRequested);
    };
    const bool requested_paint_is_last = queue.others_have_turn;
    if (!requested_paint_is_last) {
        if (const auto paint = requested_paint()) {
            queue.others_have_turn = remove;
            return paint;
        }
    }
    auto message = NextPosted(queue, filter, remove);
    if (!message)
        message = NextTouchMessage(lock, queue, filter, remove);
    if (!message)
        message = NextQuit(lock, queue, filter, remove);
    if (!message)
        message = NextPaintMessage(lock, queue, filter, remove, PaintKind::kOrdinary);
    if (!message)
        message = NextTimerMessage(lock, queue, filter, remove);
    if (message) {
        queue.others_have_turn = queue.others_have_turn && !remove;
        return message;
    }
    return requested_paint_is_last ? requested_paint() : std::nullopt;
}

BOOL WaitForMessage(MSG& message, const MessageFilter& filter, const StopCondition& stop) {
    kernel::KernelLock lock = kernel::LockKernel();
    const std::shared_ptr<MessageQueue> queue = CurrentQueue(lock);
    const auto stopped = [&] { return stop && stop(lock); };
    kernel::Time until = kernel::kNever;
    // A timer that was armed meanwhile may be due before the wait would end.
    const auto ready = [&] {
        return !queue->sent.empty() || stopped() || NamesNoWindow(lock, filter) ||
               NextMessage(lock, *queue, filter, false) || NextTimed(lock, *queue, filter) < until;
    };
    message = MSG{};
    for (;;) {
        if (NamesNoWindow(lock, filter)) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return -1;
        }
        if (HandleSentMessage(lock, *queue))
            continue;
        if (stopped())
            return FALSE;
        if (const auto next = NextMessage(lock, *queue, filter, true)) {
            message = *next;
            lock.unlock();
            ActivateByTouch(message);
            return message.message != WM_QUIT;
        }
        until = NextTimed(lock, *queue, filter);
        kernel::Block(lock, ready, until);
    }
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

namespace {

MessageFilter MakeFilter(HWND window, UINT first, UINT last) {
    MessageFilter filter;
    // The API's way to ask for messages of the thread alone.
    filter.thread_only = window == reinterpret_cast<HWND>(INT_PTR{-1});
    filter.window = filter.thread_only ? NULL : window;
    filter.first = first;
    filter.last = last;
    return filter;
}

}  // namespace

BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last) {
    const kernel::ApiCall call("GetMessageW");
    if (call.Fails())
        return -1;
    if (!message) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    return WaitForMessage(*message, MakeFilter(window, first, last), {});
}

BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT flags) {
    const kernel::ApiCall call;
    if (!message) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    MessageFilter filter = MakeFilter(window, first, last);
    if (HIWORD(flags) != 0)
        filter.kinds = HIWORD(flags);
    const bool remove = (flags & PM_REMOVE) != 0;

    kernel::KernelLock lock = kernel::LockKernel();
    const std::shared_ptr<MessageQueue> queue = CurrentQueue(lock);
    // Only those that wait now: a thread that keeps sending must not keep the caller here.
    for (std::size_t waiting = queue->sent.size(); waiting > 0; --waiting)
        HandleSentMessage(lock, *queue);
    if (NamesNoWindow(lock, filter)) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    const auto next = NextMessage(lock, *queue, filter, remove);
    if (!next)
        return FALSE;
    *message = *next;
    lock.unlock();
    if (remove)
        ActivateByTouch(*message);
    return TRUE;
}

// Waits for any object only. Returns while such messages wait, even those that the caller has seen
// already: it must not sleep through one that it looked at with PM_NOREMOVE.
DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL wait_all,
                                DWORD milliseconds, DWORD wake_mask) {
    const kernel::ApiCall call("MsgWaitForMultipleObjects");
    if (call.Fails())
        return WAIT_FAILED;
    if (wait_all || count >= MAXIMUM_WAIT_OBJECTS) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    std::vector<std::shared_ptr<kernel::Object>> objects;
    if (!kernel::CollectWaitObjects(handles, count, true, objects))
        return WAIT_FAILED;
    const kernel::Time deadline = kernel::DeadlineAfter(milliseconds);
    MessageFilter filter;
    filter.kinds = wake_mask;

    kernel::KernelLock lock = kernel::LockKernel();
    const std::shared_ptr<MessageQueue> queue = CurrentQueue(lock);
    const auto message_waits = [&] {
        if ((wake_mask & QS_SENDMESSAGE) != 0 && !queue->sent.empty())
            return true;
        return NextMessage(lock, *queue, filter, false).has_value();
    };
    kernel::Time until = deadline;
    // A timer that was armed meanwhile may be due before the wait would end.
    const auto interrupted = [&] {
        return message_waits() || NextTimed(lock, *queue, filter) < until;
    };
    for (;;) {
        until = std::min(deadline, NextTimed(lock, *queue, filter));
        const DWORD result = kernel::WaitForAny(lock, objects, interrupted, until);
        if (result != WAIT_TIMEOUT && result != WAIT_OBJECT_0 + count)
            return result;
        if (message_waits())
            return WAIT_OBJECT_0 + count;
        if (kernel::Now() >= deadline)
            return WAIT_TIMEOUT;
    }
}
