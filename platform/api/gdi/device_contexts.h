#pragma once

#include <windef.h>

#include "colors.h"

#define TRANSPARENT 1
#define OPAQUE 2

#define SRCCOPY 0x00CC0020U

extern "C" {

HDC WINAPI CreateCompatibleDC(HDC hdc);
BOOL WINAPI DeleteDC(HDC hdc);

int WINAPI SetBkMode(HDC hdc, int iBkMode);
COLORREF WINAPI SetTextColor(HDC hdc, COLORREF crColor);

// With SRCCOPY only.
BOOL WINAPI BitBlt(HDC hdcDest, int nXDest, int nYDest, int nWidth, int nHeight, HDC hdcSrc,
                   int nXSrc, int nYSrc, DWORD dwRop);
// hSrc is a device context of another surface. Pixels of the colour TransparentColor are left out;
// nothing is stretched.
BOOL WINAPI TransparentImage(HDC hdcDest, LONG DstX, LONG DstY, LONG DstCx, LONG DstCy, HANDLE hSrc,
                             LONG SrcX, LONG SrcY, LONG SrcCx, LONG SrcCy,
                             COLORREF TransparentColor);

}  // extern "C"
