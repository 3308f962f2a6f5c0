#pragma once

#include <windows.h>
#include <winioctl.h>

#define FILE_DEVICE_HAL 0x00000101U

extern "C" {

BOOL WINAPI KernelIoControl(DWORD dwIoControlCode, LPVOID lpInBuf, DWORD nInBufSize,
                            LPVOID lpOutBuf, DWORD nOutBufSize, LPDWORD lpBytesReturned);

}  // extern "C"
