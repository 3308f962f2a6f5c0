#pragma once

#include <windows.h>

// Waits, for as long as it takes, until a thread of the program has ended. What that thread sends
// to a window of the calling thread is let in meanwhile: an UpdateWindow of the other thread may
// itself wait for the window's thread, and the two would wait for each other. Posted messages,
// timers and input stay in the queue.
void WaitForThreadEnd(HANDLE thread);
