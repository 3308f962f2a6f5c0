#pragma once

#include <windef.h>

#include "../base/errors.h"

#define CW_USEDEFAULT ((int)0x80000000U)

#define HWND_BROADCAST ((HWND)(UINT_PTR)0xFFFF)
#define HWND_DESKTOP ((HWND)(UINT_PTR)0)
#define HWND_TOP ((HWND)(UINT_PTR)0)
#define HWND_BOTTOM ((HWND)(UINT_PTR)1)
#define HWND_TOPMOST ((HWND)(INT_PTR)-1)
#define HWND_NOTOPMOST ((HWND)(INT_PTR)-2)

// Windows CE numbers the last three in its own way.
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_SHOWNA 8
#define SW_SHOWMAXIMIZED 11
#define SW_MAXIMIZE 12
#define SW_RESTORE 13

#define SWP_NOSIZE 0x0001U
#define SWP_NOMOVE 0x0002U
#define SWP_NOZORDER 0x0004U
#define SWP_NOREDRAW 0x0008U
#define SWP_NOACTIVATE 0x0010U
#define SWP_FRAMECHANGED 0x0020U
#define SWP_DRAWFRAME SWP_FRAMECHANGED
#define SWP_SHOWWINDOW 0x0040U
#define SWP_HIDEWINDOW 0x0080U
#define SWP_NOCOPYBITS 0x0100U
#define SWP_NOOWNERZORDER 0x0200U
#define SWP_NOREPOSITION SWP_NOOWNERZORDER

struct tagCREATESTRUCTW {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
};
using CREATESTRUCTW = tagCREATESTRUCTW;
using LPCREATESTRUCTW = CREATESTRUCTW*;

struct tagWINDOWPOS {
    HWND hwnd;
    HWND hwndInsertAfter;
    int x;
    int y;
    int cx;
    int cy;
    UINT flags;
};
using WINDOWPOS = tagWINDOWPOS;
using LPWINDOWPOS = WINDOWPOS*;

extern "C" {

HWND WINAPI CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName,
                            DWORD dwStyle, int X, int Y, int nWidth, int nHeight, HWND hWndParent,
                            HMENU hMenu, HINSTANCE hInstance, LPVOID lpParam);
BOOL WINAPI DestroyWindow(HWND hWnd);

BOOL WINAPI ShowWindow(HWND hWnd, int nCmdShow);
// On a window of another thread it takes effect at once, and the messages about it follow on that
// thread. A difference from a genuine platform, which waits for that thread.
BOOL WINAPI SetWindowPos(HWND hWnd, HWND hWndInsertAfter, int X, int Y, int cx, int cy,
                         UINT uFlags);
BOOL WINAPI GetWindowRect(HWND hWnd, LPRECT lpRect);
BOOL WINAPI GetClientRect(HWND hWnd, LPRECT lpRect);

HWND WINAPI FindWindowW(LPCWSTR lpClassName, LPCWSTR lpWindowName);

BOOL WINAPI SetForegroundWindow(HWND hWnd);
HWND WINAPI GetActiveWindow();

// For the extra bytes of a window only (the DWLP_ values of a dialog).
LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong);

}  // extern "C"
