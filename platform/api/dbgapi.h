#pragma once

#include <windows.h>

extern "C" {

// Formatted text to the debug output, with the formats of wsprintfW. Keeps the last error.
void WINAPIV NKDbgPrintfW(LPCWSTR lpszFmt, ...);

}  // extern "C"
