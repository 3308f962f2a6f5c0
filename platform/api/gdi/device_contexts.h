#pragma once

#include <windef.h>

#include "colors.h"

#define TRANSPARENT 1
#define OPAQUE 2

#define SRCCOPY 0x00CC0020U

#define TECHNOLOGY 2
#define HORZSIZE 4
#define VERTSIZE 6
#define HORZRES 8
#define VERTRES 10
#define BITSPIXEL 12
#define PLANES 14
#define NUMCOLORS 24
#define RASTERCAPS 38
#define LOGPIXELSX 88
#define LOGPIXELSY 90
#define DT_RASDISPLAY 1

extern "C" {

HDC WINAPI CreateCompatibleDC(HDC hdc);
BOOL WINAPI DeleteDC(HDC hdc);
int WINAPI GetDeviceCaps(HDC hdc, int nIndex);

int WINAPI SetBkMode(HDC hdc, int iBkMode);
int WINAPI GetBkMode(HDC hdc);
COLORREF WINAPI SetBkColor(HDC hdc, COLORREF crColor);
COLORREF WINAPI GetBkColor(HDC hdc);
COLORREF WINAPI SetTextColor(HDC hdc, COLORREF crColor);
COLORREF WINAPI GetTextColor(HDC hdc);

COLORREF WINAPI GetPixel(HDC hdc, int nXPos, int nYPos);

// With SRCCOPY only.
BOOL WINAPI BitBlt(HDC hdcDest, int nXDest, int nYDest, int nWidth, int nHeight, HDC hdcSrc,
                   int nXSrc, int nYSrc, DWORD dwRop);
// hSrc is a device context of another surface. Pixels of the colour TransparentColor are left out;
// nothing is stretched.
BOOL WINAPI TransparentImage(HDC hdcDest, LONG DstX, LONG DstY, LONG DstCx, LONG DstCy, HANDLE hSrc,
                             LONG SrcX, LONG SrcY, LONG SrcCx, LONG SrcCy,
                             COLORREF TransparentColor);

}  // extern "C"
