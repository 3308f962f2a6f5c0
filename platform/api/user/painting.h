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

// Paints at once when the calling thread is the window's. On a window of another thread a genuine
// platform waits for the paint. By default this one differs: the paint becomes the window's next
// message and the call returns without waiting, so that a thread that sleeps cannot block a thread
// that repaints. kernel::Options::waiting_repaints makes it wait.
BOOL WINAPI UpdateWindow(HWND hWnd);

int WINAPI FillRect(HDC hDC, CONST RECT* lprc, HBRUSH hbr);

// Returns the height of the text; with DT_VCENTER or DT_BOTTOM the distance from the rectangle's
// top to the text's bottom. A decision: DT_VCENTER and DT_BOTTOM apply without DT_SINGLELINE too,
// where desktop Windows puts the text at the top (docs/platform-differences.md says why).
int WINAPI DrawTextW(HDC hDC, LPCWSTR lpString, int nCount, LPRECT lpRect, UINT uFormat);

}  // extern "C"
