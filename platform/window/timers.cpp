#include <algorithm>

#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/retrieval.h"

namespace platform::window {
namespace {

// USER_TIMER_MINIMUM and USER_TIMER_MAXIMUM.
constexpr UINT kShortestPeriod = 10;
constexpr UINT kLongestPeriod = 0x7FFFFFFF;

kernel::Duration PeriodOf(UINT milliseconds) {
    return std::chrono::milliseconds(std::clamp(milliseconds, kShortestPeriod, kLongestPeriod));
}

auto FindTimer(std::vector<Timer>& timers, HWND window, UINT_PTR id) {
    return std::find_if(timers.begin(), timers.end(), [&](const Timer& timer) {
        return timer.window == window && timer.id == id;
    });
}

// The queue that a timer of this window (NULL: of the calling thread) belongs to, or null.
std::shared_ptr<MessageQueue> TimerQueue(kernel::KernelLock& lock, HWND window) {
    if (window == NULL)
        return CurrentQueue(lock);
    const auto target = RequireWindow(lock, window);
    return target ? target->queue : nullptr;
}

bool Passes(const MessageFilter& filter, const Timer& timer) {
    return filter.Accepts(QS_TIMER, timer.window, WM_TIMER);
}

}  // namespace

kernel::Time NextTimed(kernel::KernelLock& lock, const MessageQueue& queue,
                       const MessageFilter& filter) {
    kernel::Time next = kernel::kNever;
    for (const Timer& timer : queue.timers)
        if (Passes(filter, timer))
            next = std::min(next, timer.due);
    for (const auto& window : TheDesktop(lock).z_order)
        if (window->queue.get() == &queue && !gdi::IsEmpty(window->update.rectangle) &&
            window->update.again > kernel::Now() &&
            filter.Accepts(QS_PAINT, window->handle, WM_PAINT))
            next = std::min(next, window->update.again);
    return next;
}

std::optional<MSG> NextTimerMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove) {
    const kernel::Time now = kernel::Now();
    Timer* first = nullptr;
    for (Timer& timer : queue.timers)
        if (timer.due <= now && Passes(filter, timer) && (!first || timer.due < first->due))
            first = &timer;
    if (!first)
        return std::nullopt;
    MSG message{};
    message.hwnd = first->window;
    message.message = WM_TIMER;
    message.wParam = first->id;
    message.lParam = reinterpret_cast<LPARAM>(first->procedure);
    message.time = MessageTime();
    message.pt = TheDesktop(lock).touch_position;
    // Missed periods are one message; the next due time stays a multiple of the period.
    if (remove)
        first->due += ((now - first->due) / first->period + 1) * first->period;
    return message;
}

std::map<UINT_PTR, kernel::Time> RunningTimers(HWND window) {
    kernel::KernelLock lock = kernel::LockKernel();
    std::map<UINT_PTR, kernel::Time> running;
    const auto target = FindWindowObject(lock, window);
    if (!target)
        return running;
    for (const Timer& timer : target->queue->timers)
        if (timer.window == window)
            running[timer.id] = timer.due;
    return running;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
    const kernel::ApiCall call("SetTimer");
    if (call.Fails())
        return 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto queue = TimerQueue(lock, window);
    if (!queue)
        return 0;
    const auto running = FindTimer(queue->timers, window, id);
    if (running != queue->timers.end())
        queue->timers.erase(running);
    else if (window == NULL)
        id = ++TheDesktop(lock).last_timer;
    const kernel::Duration period = PeriodOf(milliseconds);
    queue->timers.push_back({window, id, procedure, period, kernel::Now() + period});
    kernel::Wake(lock);
    // 0 would mean failure.
    return id != 0 ? id : 1;
}

BOOL KillTimer(HWND window, UINT_PTR id) {
    const kernel::ApiCall call("KillTimer");
    if (call.Fails())
        return FALSE;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto queue = TimerQueue(lock, window);
    if (!queue)
        return FALSE;
    const auto running = FindTimer(queue->timers, window, id);
    if (running == queue->timers.end()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    queue->timers.erase(running);
    return TRUE;
}
