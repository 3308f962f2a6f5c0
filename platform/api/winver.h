#pragma once

#include <windows.h>

#define VS_FFI_SIGNATURE 0xFEEF04BDU
#define VS_FFI_STRUCVERSION 0x00010000U
#define VS_VERSION_INFO 1

struct tagVS_FIXEDFILEINFO {
    DWORD dwSignature;
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS;
    DWORD dwFileVersionLS;
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
};
using VS_FIXEDFILEINFO = tagVS_FIXEDFILEINFO;

static_assert(sizeof(VS_FIXEDFILEINFO) == 52);
static_assert(offsetof(VS_FIXEDFILEINFO, dwProductVersionMS) == 16);

extern "C" {

// The device's own prototypes take the texts without const.
DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR lptstrFilename, LPDWORD lpdwHandle);
BOOL WINAPI GetFileVersionInfoW(LPCWSTR lptstrFilename, DWORD dwHandle, DWORD dwLen, LPVOID lpData);
BOOL WINAPI VerQueryValueW(LPCVOID pBlock, LPCWSTR lpSubBlock, LPVOID* lplpBuffer, PUINT puLen);

}  // extern "C"
