#pragma once

#include <windows.h>

#include <functional>

#include "platform/window/message_queue.h"
#include "platform/window/window.h"

namespace platform::window {

// None of these may be called with the kernel lock held, except those that take it as a parameter.

// Calls the procedure of a window of the calling thread; 0 when the window is gone.
LRESULT CallProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Sends a message about a change that has happened already to a window of any thread. Its own
// thread calls the procedure; another thread does not wait. Drops the message when the window's
// thread has kMaxPosted of them waiting.
void Notify(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// WM_WINDOWPOSCHANGED.
void NotifyPosition(const WINDOWPOS& position);

// Runs `action` on the queue's thread: at once if that is the calling thread, otherwise when that
// thread next handles sent messages.
void RunOn(const std::shared_ptr<MessageQueue>& queue, std::function<void()> action);
// The same on a window's thread, not the calling one, and waits until the action has run or the
// window is gone. Handles messages sent to the calling thread meanwhile.
void RunOnAndWait(kernel::KernelLock& lock, const Window& window, std::function<void()> action);

// Handles the first of the messages sent to the calling thread. False when there is none.
bool HandleSentMessage(kernel::KernelLock& lock, MessageQueue& queue);

// Sends to a window of any thread and waits for the result, handling messages sent to the calling
// thread meanwhile. False with ERROR_INVALID_WINDOW_HANDLE when there is no such window, or it is
// destroyed before it has handled the message.
bool SendAndWait(HWND window, UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);

}  // namespace platform::window
