#pragma once

#include <windows.h>

#include <functional>

#include "platform/window/message_queue.h"

namespace platform::window {

// None of these may be called with the kernel lock held, except those that take it as a parameter.

// Calls the procedure of a window of the calling thread; 0 when the window is gone.
LRESULT CallProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Tells a window of any thread about a change that has happened already. Its own thread calls the
// procedure; another thread hands the message over and does not wait. False when the window's
// thread has let too many such messages pile up.
bool Notify(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// WM_WINDOWPOSCHANGED.
void NotifyPosition(const WINDOWPOS& position);

// Runs `action` on the queue's thread: at once if that is the calling thread, otherwise when that
// thread next handles sent messages.
void RunOn(const std::shared_ptr<MessageQueue>& queue, std::function<void()> action);
// The same, and waits until the action has run or the queue's thread has ended. Handles messages
// sent to the calling thread meanwhile.
void RunOnAndWait(kernel::KernelLock& lock, MessageQueue& queue, std::function<void()> action);

// Handles the first of the messages sent to the calling thread. False when there is none.
bool HandleSentMessage(kernel::KernelLock& lock, MessageQueue& queue);

// Sends to a window of any thread and waits for the answer, handling messages sent to the calling
// thread meanwhile. False with ERROR_INVALID_WINDOW_HANDLE when none comes: there is no such
// window, or it went before it could answer.
bool SendAndWait(HWND window, UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);

}  // namespace platform::window
