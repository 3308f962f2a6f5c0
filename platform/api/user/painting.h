#pragma once

#include <windef.h>

#include "../base/errors.h"

#define DT_TOP 0x00000000U
#define DT_LEFT 0x00000000U
#define DT_CENTER 0x00000001U
#define DT_RIGHT 0x00000002U
#define DT_VCENTER 0x00000004U
#define DT_BOTTOM 0x00000008U
#define DT_WORDBREAK 0x00000010U
#define DT_SINGLELINE 0x00000020U
#define DT_EXPANDTABS 0x00000040U
#define DT_TABSTOP 0x00000080U
#define DT_NOCLIP 0x00000100U
#define DT_EXTERNALLEADING 0x00000200U
#define DT_CALCRECT 0x00000400U
#define DT_NOPREFIX 0x00000800U
#define DT_INTERNAL 0x00001000U
#define DT_END_ELLIPSIS 0x00008000U

struct tagPAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
};
using PAINTSTRUCT = tagPAINTSTRUCT;
using PPAINTSTRUCT = PAINTSTRUCT*;
using LPPAINTSTRUCT = PAINTSTRUCT*;

extern "C" {

HDC WINAPI GetDC(HWND hWnd);
int WINAPI ReleaseDC(HWND hWnd, HDC hDC);

HDC WINAPI BeginPaint(HWND hwnd, LPPAINTSTRUCT lpPaint);
BOOL WINAPI EndPaint(HWND hWnd, CONST PAINTSTRUCT* lpPaint);

BOOL WINAPI InvalidateRect(HWND hWnd, CONST RECT* lpRect, BOOL bErase);
BOOL WINAPI ValidateRect(HWND hWnd, CONST RECT* lpRect);
BOOL WINAPI GetUpdateRect(HWND hWnd, LPRECT lpRect, BOOL bErase);

// Paints at once when the calling thread is the window's. Called from any other thread it differs
// from a genuine platform, which waits for the paint: here the paint becomes the window's next
// message and the call returns without waiting, so that a thread that repaints can never be blocked
// by a user-interface thread that sleeps or waits for it.
BOOL WINAPI UpdateWindow(HWND hWnd);

int WINAPI FillRect(HDC hDC, CONST RECT* lprc, HBRUSH hbr);

// Returns the height of the text. A difference from a genuine platform: DT_VCENTER centres a text
// that wraps as well, not only one of a single line.
int WINAPI DrawTextW(HDC hDC, LPCWSTR lpString, int nCount, LPRECT lpRect, UINT uFormat);

}  // extern "C"
