#pragma once

#include <windef.h>

#include "colors.h"

#define TRANSPARENT 1
#define OPAQUE 2

#define SRCCOPY 0x00CC0020U
#define SRCPAINT 0x00EE0086U
#define SRCAND 0x008800C6U
#define SRCINVERT 0x00660046U
#define SRCERASE 0x00440328U
#define NOTSRCCOPY 0x00330008U
#define NOTSRCERASE 0x001100A6U
#define MERGECOPY 0x00C000CAU
#define MERGEPAINT 0x00BB0226U
#define PATCOPY 0x00F00021U
#define PATPAINT 0x00FB0A09U
#define PATINVERT 0x005A0049U
#define DSTINVERT 0x00550009U
#define BLACKNESS 0x00000042U
#define WHITENESS 0x00FF0062U

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

COLORREF WINAPI SetPixel(HDC hdc, int X, int Y, COLORREF crColor);
COLORREF WINAPI GetPixel(HDC hdc, int nXPos, int nYPos);

BOOL WINAPI BitBlt(HDC hdcDest, int nXDest, int nYDest, int nWidth, int nHeight, HDC hdcSrc,
                   int nXSrc, int nYSrc, DWORD dwRop);
BOOL WINAPI StretchBlt(HDC hdcDest, int nXOriginDest, int nYOriginDest, int nWidthDest,
                       int nHeightDest, HDC hdcSrc, int nXOriginSrc, int nYOriginSrc, int nWidthSrc,
                       int nHeightSrc, DWORD dwRop);
BOOL WINAPI PatBlt(HDC hdc, int nXLeft, int nYLeft, int nWidth, int nHeight, DWORD dwRop);
// hSrc is a device context or a bitmap. Pixels of the colour TransparentColor are left out.
BOOL WINAPI TransparentImage(HDC hdcDest, LONG DstX, LONG DstY, LONG DstCx, LONG DstCy, HANDLE hSrc,
                             LONG SrcX, LONG SrcY, LONG SrcCx, LONG SrcCy,
                             COLORREF TransparentColor);

}  // extern "C"
