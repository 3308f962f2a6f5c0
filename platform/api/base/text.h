#pragma once

#include <windef.h>

extern "C" {

// In these formats %s and %c take wide text, %S and %C narrow text. A result has at most 1024
// characters, the terminator included.
int WINAPIV wsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, ...);
int WINAPI wvsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, va_list arglist);
int WINAPI lstrlenW(LPCWSTR lpString);

}  // extern "C"
