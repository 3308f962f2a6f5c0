#pragma once

#include <windef.h>
#include <winerror.h>
#include <winnt.h>

#include "errors.h"
#include "handles.h"

#define INFINITE 0xFFFFFFFFU

#define WAIT_FAILED 0xFFFFFFFFU
#define WAIT_OBJECT_0 (STATUS_WAIT_0 + 0U)
#define WAIT_ABANDONED (STATUS_ABANDONED_WAIT_0 + 0U)
#define WAIT_ABANDONED_0 (STATUS_ABANDONED_WAIT_0 + 0U)
#define WAIT_IO_COMPLETION STATUS_USER_APC

// The fields are the kernel's, between InitializeCriticalSection and DeleteCriticalSection.
struct CRITICAL_SECTION {
    unsigned int LockCount;
    HANDLE OwnerThread;
    HANDLE hCrit;
    DWORD needtrap;
    DWORD dwContentions;
};
using PCRITICAL_SECTION = CRITICAL_SECTION*;
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

extern "C" {

DWORD WINAPI WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds);
// As on the device, fWaitAll must be FALSE: ERROR_INVALID_PARAMETER otherwise.
DWORD WINAPI WaitForMultipleObjects(DWORD nCount, CONST HANDLE* lpHandles, BOOL fWaitAll,
                                    DWORD dwMilliseconds);

HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES lpEventAttributes, BOOL bManualReset,
                           BOOL bInitialState, LPCWSTR lpName);
HANDLE WINAPI OpenEventW(DWORD dwDesiredAccess, BOOL bInheritHandle, LPCWSTR lpName);
BOOL WINAPI SetEvent(HANDLE hEvent);

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES lpMutexAttributes, BOOL bInitialOwner,
                           LPCWSTR lpName);

void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
void WINAPI EnterCriticalSection(LPCRITICAL_SECTION lpCriticalSection);
void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION lpCriticalSection);

}  // extern "C"
