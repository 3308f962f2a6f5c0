#pragma once

#include <windef.h>

#include "../base/errors.h"

#define CS_VREDRAW 0x0001U
#define CS_HREDRAW 0x0002U
#define CS_DBLCLKS 0x0008U
#define CS_PARENTDC 0x0080U
#define CS_NOCLOSE 0x0200U
#define CS_SAVEBITS 0x0800U
#define CS_GLOBALCLASS 0x4000U

using WNDPROC = LRESULT(CALLBACK*)(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

struct tagWNDCLASSW {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
};
using WNDCLASSW = tagWNDCLASSW;
using PWNDCLASSW = WNDCLASSW*;
using LPWNDCLASSW = WNDCLASSW*;

extern "C" {

ATOM WINAPI RegisterClassW(CONST WNDCLASSW* lpWndClass);
BOOL WINAPI GetClassInfoW(HINSTANCE hInstance, LPCWSTR lpClassName, LPWNDCLASSW lpWndClass);

LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);

}  // extern "C"
