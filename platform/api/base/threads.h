#pragma once

#include <windef.h>
#include <winnt.h>

#include "errors.h"
#include "handles.h"

// Windows CE's scale: 0 is the most urgent, 7 the least.
#define THREAD_PRIORITY_TIME_CRITICAL 0
#define THREAD_PRIORITY_HIGHEST 1
#define THREAD_PRIORITY_ABOVE_NORMAL 2
#define THREAD_PRIORITY_NORMAL 3
#define THREAD_PRIORITY_BELOW_NORMAL 4
#define THREAD_PRIORITY_LOWEST 5
#define THREAD_PRIORITY_ABOVE_IDLE 6
#define THREAD_PRIORITY_IDLE 7
#define THREAD_PRIORITY_ERROR_RETURN 0x7FFFFFFF

#define CREATE_SUSPENDED 0x00000004U
#define STACK_SIZE_PARAM_IS_A_RESERVATION 0x00010000U
#define STILL_ACTIVE STATUS_PENDING

// The pseudo handle, as the kernel lays it out; no handle table contains its value.
#define SYS_HANDLE_BASE 64
#define SH_CURTHREAD 1

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID lpThreadParameter);

extern "C" {

// A thread cannot be created suspended: ERROR_CALL_NOT_IMPLEMENTED.
HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES lpThreadAttributes, DWORD dwStackSize,
                           LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter,
                           DWORD dwCreationFlags, LPDWORD lpThreadId);
BOOL WINAPI SetThreadPriority(HANDLE hThread, int nPriority);

void WINAPI Sleep(DWORD dwMilliseconds);
// Milliseconds since the unit was switched on.
DWORD WINAPI GetTickCount();

}  // extern "C"

inline HANDLE GetCurrentThread() {
    return reinterpret_cast<HANDLE>(ULONG_PTR{SYS_HANDLE_BASE + SH_CURTHREAD});
}
