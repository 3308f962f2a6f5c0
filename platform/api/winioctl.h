#pragma once

#include <windows.h>

#define CTL_CODE(DeviceType, Function, Method, Access)                                  \
    (((DWORD)(DeviceType) << 16) | ((DWORD)(Access) << 14) | ((DWORD)(Function) << 2) | \
     (DWORD)(Method))

#define METHOD_BUFFERED 0U
#define METHOD_IN_DIRECT 1U
#define METHOD_OUT_DIRECT 2U
#define METHOD_NEITHER 3U

#define FILE_ANY_ACCESS 0U
#define FILE_READ_ACCESS 1U
#define FILE_WRITE_ACCESS 2U

#define FILE_DEVICE_SERIAL_PORT 0x0000001BU
#define FILE_DEVICE_UNKNOWN 0x00000022U
#define FILE_DEVICE_VIDEO 0x00000023U
