#pragma once

#include <windef.h>
#include <winnt.h>

#include "errors.h"
#include "handles.h"

#define MAX_PATH 260

#define CREATE_NEW 1U
#define CREATE_ALWAYS 2U
#define OPEN_EXISTING 3U
#define OPEN_ALWAYS 4U
#define TRUNCATE_EXISTING 5U

#define FILE_FLAG_WRITE_THROUGH 0x80000000U
#define FILE_FLAG_OVERLAPPED 0x40000000U
#define FILE_FLAG_NO_BUFFERING 0x20000000U
#define FILE_FLAG_RANDOM_ACCESS 0x10000000U

struct OVERLAPPED {
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};
using LPOVERLAPPED = OVERLAPPED*;

extern "C" {

// Stream drivers only ("COM9:"); there is no file system. A name that no driver has: last error
// ERROR_DEV_NOT_EXIST for a device name, ERROR_FILE_NOT_FOUND for any other.
HANDLE WINAPI CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                          LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition,
                          DWORD dwFlagsAndAttributes, HANDLE hTemplateFile);
BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                     LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped);
BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                      LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped);
BOOL WINAPI DeviceIoControl(HANDLE hDevice, DWORD dwIoControlCode, LPVOID lpInBuffer,
                            DWORD nInBufferSize, LPVOID lpOutBuffer, DWORD nOutBufferSize,
                            LPDWORD lpBytesReturned, LPOVERLAPPED lpOverlapped);

}  // extern "C"
