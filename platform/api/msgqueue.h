#pragma once

#include <windows.h>

#define MSGQUEUE_NOPRECOMMIT 0x00000001U
#define MSGQUEUE_ALLOW_BROKEN 0x00000002U

#define MSGQUEUE_MSGALERT 0x00000001U

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

HANDLE WINAPI CreateMsgQueue(LPCWSTR lpszName, LPMSGQUEUEOPTIONS lpOptions);
HANDLE WINAPI OpenMsgQueue(HANDLE hSrcProc, HANDLE hMsgQ, LPMSGQUEUEOPTIONS lpOptions);
BOOL WINAPI ReadMsgQueue(HANDLE hMsgQ, LPVOID lpBuffer, DWORD cbBufferSize,
                         LPDWORD lpNumberOfBytesRead, DWORD dwTimeout, DWORD* pdwFlags);
BOOL WINAPI WriteMsgQueue(HANDLE hMsgQ, LPVOID lpBuffer, DWORD cbDataSize, DWORD dwTimeout,
                          DWORD dwFlags);
BOOL WINAPI CloseMsgQueue(HANDLE hMsgQ);

}  // extern "C"
