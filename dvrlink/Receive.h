#pragma once

#include <windows.h>

// The receive thread: opens the conversation with four queries, then reads byte by byte and feeds
// the parser until g_bReceiveRunning is clear. The flag is set by whoever starts the thread.
DWORD WINAPI ThreadProc_COM_Rx(LPVOID parameter);
