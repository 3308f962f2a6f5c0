#pragma once

#include <windows.h>

#include <functional>
#include <optional>

#include "platform/window/desktop.h"

namespace platform::window {

// Which messages a retrieval may return.
struct MessageFilter {
    HWND window = NULL;        // NULL: the thread's own and those of all its windows
    bool thread_only = false;  // only those of no window
    UINT first = 0;            // both 0: all numbers
    UINT last = 0;
    DWORD kinds = QS_ALLINPUT;  // QS_... bits; sent messages are handled in any case

    bool Accepts(DWORD kind, HWND of_window, UINT message) const;
};

// The next message for the calling thread now, in the API's order: posted messages,
// input, quit, paint, timers. (Sent messages come before; the caller handles them.) A paint that
// another thread's UpdateWindow requested without waiting comes first, in turn with the others:
// otherwise a thread that requests paints faster than the window can paint would keep them out.
std::optional<MSG> NextMessage(kernel::KernelLock& lock, MessageQueue& queue,
                               const MessageFilter& filter, bool remove);

// The next time at which the queue gets a message by itself: its next timer's or repeated paint's.
kernel::Time NextTimed(kernel::KernelLock& lock, const MessageQueue& queue,
                       const MessageFilter& filter);

// GetMessageW for a modal run: also returns, with the result 0 and WM_NULL in `message`, once
// `stop` (may be empty) holds. The API's results otherwise.
using StopCondition = std::function<bool(kernel::KernelLock& lock)>;
BOOL WaitForMessage(MSG& message, const MessageFilter& filter, const StopCondition& stop);

// Parts of NextMessage.
std::optional<MSG> NextTimerMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove);
std::optional<MSG> NextTouchMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove);
// kRequested: only paints that another thread's UpdateWindow requested; kOrdinary: all others.
enum class PaintKind { kRequested, kOrdinary };
std::optional<MSG> NextPaintMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove, PaintKind kind);

}  // namespace platform::window
