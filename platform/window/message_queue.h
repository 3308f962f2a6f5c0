#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/kernel/clock.h"
#include "platform/kernel/kernel_lock.h"

namespace platform::window {

struct Window;

// A message from one thread to the window procedure of another thread, or an action to run on that
// thread.
struct SentMessage {
    enum class State { kPending, kHandled, kLost };

    HWND window = NULL;  // NULL: an action that no window's end cancels
    UINT message = 0;
    WPARAM wparam = 0;
    LPARAM lparam = 0;
    // Storage for the lParam of a notification without a waiting sender.
    std::optional<WINDOWPOS> position;
    // Instead of the message, when set.
    std::function<void()> action;

    bool sender_waits = false;
    State state = State::kPending;
    LRESULT result = 0;
};

// WM_TIMER is not stored: the timer is due once `due` has passed. So arming it again also cancels a
// message that no thread has fetched.
struct Timer {
    HWND window = NULL;
    UINT_PTR id = 0;
    TIMERPROC procedure = nullptr;
    kernel::Duration period{};
    kernel::Time due{};
};

// The message queue of one thread. Guarded by the kernel lock.
struct MessageQueue {
    std::deque<std::shared_ptr<SentMessage>> sent;
    // Being handled now, the innermost last.
    std::vector<std::shared_ptr<SentMessage>> handled;
    std::deque<MSG> posted;
    std::optional<int> quit_code;
    std::vector<Timer> timers;  // in the order of their arming

    // A paint that another thread requested went ahead of all other messages; the next message is
    // one of those, if there is any.
    bool others_have_turn = false;

    HWND active = NULL;
    HWND focus = NULL;
};

// The limit of posted messages in a queue (ERROR_NOT_ENOUGH_QUOTA).
inline constexpr std::size_t kMaxPosted = 10000;

// The calling thread's queue, created at the first call.
std::shared_ptr<MessageQueue> CurrentQueue(kernel::KernelLock& lock);

// Ends the calling thread's queue: senders that wait for it stop waiting.
void CloseCurrentQueue(kernel::KernelLock& lock);

// Appends a posted message; false when the queue is full.
bool Post(kernel::KernelLock& lock, MessageQueue& queue, HWND window, UINT message, WPARAM wparam,
          LPARAM lparam);

// Removes every message of a window from its queue; senders that wait for it stop waiting.
void ForgetMessages(kernel::KernelLock& lock, MessageQueue& queue, HWND window);

// The clock as messages and timer procedures carry it.
DWORD MessageTime();

}  // namespace platform::window
