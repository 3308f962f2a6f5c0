#pragma once

#include <windef.h>

extern "C" {

// The last error of the calling thread.
DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD dwErrCode);

}  // extern "C"
