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

// A message on its way from one thread to another one's window procedure, or an action that has to
// run on that other thread.
struct SentMessage {
    enum class State { kPending, kAnswered, kLost };

    HWND window = NULL;
    UINT message = 0;
    WPARAM wparam = 0;
    LPARAM lparam = 0;
    // Storage for the lParam of a notice that nobody waits for.
    std::optional<WINDOWPOS> position;
    // Instead of the message, when set.
    std::function<void()> action;

    bool sender_waits = false;
    State state = State::kPending;
    LRESULT result = 0;
};

// A timer's WM_TIMER is not stored: it is due while `due` has passed, so that arming it anew also
// takes back a message that nobody has fetched.
struct Timer {
    HWND window = NULL;
    UINT_PTR id = 0;
    TIMERPROC procedure = nullptr;
    kernel::Duration period{};
    kernel::Time due{};
};

// What one thread has to do with windows. Guarded by the kernel lock.
struct MessageQueue {
    DWORD thread_id = 0;
    DWORD process_id = 0;

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

// A queue takes no more posted messages than these (ERROR_NOT_ENOUGH_QUOTA).
inline constexpr std::size_t kMaxPosted = 10000;

// The calling thread's queue, made at its first need.
std::shared_ptr<MessageQueue> CurrentQueue(kernel::KernelLock& lock);

// The queue of a thread that has one, else null.
std::shared_ptr<MessageQueue> FindQueue(kernel::KernelLock& lock, DWORD thread_id);

// Ends the calling thread's queue: whoever waits for an answer from it learns that none will come.
void CloseCurrentQueue(kernel::KernelLock& lock);

// Appends a posted message; false when the queue is full.
bool Post(kernel::KernelLock& lock, MessageQueue& queue, HWND window, UINT message, WPARAM wparam,
          LPARAM lparam);

// Takes every message of a window out of its queue; senders that wait learn it.
void ForgetMessages(kernel::KernelLock& lock, MessageQueue& queue, HWND window);

// The clock as messages and timer procedures carry it.
DWORD MessageTime();

}  // namespace platform::window
