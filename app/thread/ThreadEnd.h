#pragma once

#include <windows.h>

// Far longer than a thread that was woken needs to end.
inline constexpr DWORD kThreadEndLimit = 20000;

// Waits up to so many milliseconds until a thread of the program has ended. FALSE when that is not
// known: the caller must then keep everything that the thread uses.
//
// The wait dispatches messages that are sent to the calling thread's windows: the other thread's
// UpdateWindow may wait for the window's thread, and the two would wait for each other. Posted
// messages, timers and input stay in the queue.
BOOL WaitForThreadEnd(HANDLE thread, DWORD milliseconds);
