#pragma once

#include <windows.h>

#define MSGQUEUE_NOPRECOMMIT 0x00000001U
#define MSGQUEUE_ALLOW_BROKEN 0x00000002U

struct MSGQUEUEOPTIONS_OS {
    DWORD dwSize;
    DWORD dwFlags;
    DWORD dwMaxMessages;
    DWORD cbMaxMessage;
    BOOL bReadAccess;
};
using MSGQUEUEOPTIONS = MSGQUEUEOPTIONS_OS;
using PMSGQUEUEOPTIONS = MSGQUEUEOPTIONS*;
using LPMSGQUEUEOPTIONS = MSGQUEUEOPTIONS*;

static_assert(sizeof(MSGQUEUEOPTIONS) == 20);

extern "C" {

// For reading only: ERROR_CALL_NOT_IMPLEMENTED without bReadAccess. The system writes to the queue.
HANDLE WINAPI CreateMsgQueue(LPCWSTR lpszName, LPMSGQUEUEOPTIONS lpOptions);
BOOL WINAPI ReadMsgQueue(HANDLE hMsgQ, LPVOID lpBuffer, DWORD cbBufferSize,
                         LPDWORD lpNumberOfBytesRead, DWORD dwTimeout, DWORD* pdwFlags);
BOOL WINAPI CloseMsgQueue(HANDLE hMsgQ);

}  // extern "C"
