#pragma once

#include <windows.h>

enum tagCOINIT {
    COINIT_MULTITHREADED = 0x0,
    COINIT_APARTMENTTHREADED = 0x2,
    COINIT_DISABLE_OLE1DDE = 0x4,
    COINIT_SPEED_OVER_MEMORY = 0x8,
};
using COINIT = tagCOINIT;

extern "C" {

HRESULT WINAPI CoInitializeEx(LPVOID pvReserved, DWORD dwCoInit);
void WINAPI CoUninitialize();

}  // extern "C"
