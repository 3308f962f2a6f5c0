#pragma once

// The Windows CE API for the unit's image: the desktop's headers, with what Windows CE declares in
// another way. Every source is compiled with it.

// Before all headers of the C++ library, which ask for a printf of mingw-w64's own.
#include <stdio.h>

// Inline functions of Windows CE's headers, which no system library exports.
#define GetCurrentProcess DesktopGetCurrentProcess
#define GetCurrentThread DesktopGetCurrentThread
#define LockResource DesktopLockResource
#define MsgWaitForMultipleObjects DesktopMsgWaitForMultipleObjects
#define SetEvent DesktopSetEvent
#define TlsAlloc DesktopTlsAlloc
#define TlsFree DesktopTlsFree
// A function of the same name with other parameters.
#define SetSystemPowerState DesktopSetSystemPowerState
#include <windows.h>

#include <commctrl.h>
#undef GetCurrentProcess
#undef GetCurrentThread
#undef LockResource
#undef MsgWaitForMultipleObjects
#undef SetEvent
#undef SetSystemPowerState
#undef TlsAlloc
#undef TlsFree

extern "C" {

// From kfuncs.h, pm.h and winuser.h.
BOOL WINAPI EventModify(HANDLE hEvent, DWORD func);
DWORD WINAPI TlsCall(DWORD type, DWORD dwTlsIndex);
DWORD WINAPI SetSystemPowerState(LPCWSTR pwsSystemState, DWORD StateFlags, DWORD Options);

}  // extern "C"

#include "tools/fidelity/ce_supplement.h"

// The kernel's pseudo handles.
inline HANDLE GetCurrentThread() {
    constexpr ULONG_PTR kCurrentThread = 64 + 1;  // SYS_HANDLE_BASE + SH_CURTHREAD
    return reinterpret_cast<HANDLE>(kCurrentThread);
}

inline HANDLE GetCurrentProcess() {
    constexpr ULONG_PTR kCurrentProcess = 64 + 2;  // SYS_HANDLE_BASE + SH_CURPROC
    return reinterpret_cast<HANDLE>(kCurrentProcess);
}

inline BOOL SetEvent(HANDLE hEvent) {
    constexpr DWORD kSet = 3;  // EVENT_SET
    return EventModify(hEvent, kSet);
}

inline DWORD TlsAlloc() {
    return TlsCall(0, 0);  // TLS_FUNCALLOC
}

inline BOOL TlsFree(DWORD dwTlsIndex) {
    return static_cast<BOOL>(TlsCall(1, dwTlsIndex));  // TLS_FUNCFREE
}

// A loaded resource is its address.
inline LPVOID LockResource(HGLOBAL hResData) {
    return hResData;
}

// Windows CE cannot wait for all objects.
inline DWORD MsgWaitForMultipleObjects(DWORD nCount, const HANDLE* pHandles, BOOL /*fWaitAll*/,
                                       DWORD dwMilliseconds, DWORD dwWakeMask) {
    return MsgWaitForMultipleObjectsEx(nCount, pHandles, dwMilliseconds, dwWakeMask, 0);
}

// Values that Windows CE numbers in another way.
#undef COLOR_WINDOW
#define COLOR_WINDOW (5 | 0x40000000)  // SYS_COLOR_INDEX_FLAG
#undef THREAD_PRIORITY_ABOVE_NORMAL
#define THREAD_PRIORITY_ABOVE_NORMAL 2
