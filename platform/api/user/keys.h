#pragma once

#include <windef.h>

#include "../base/errors.h"
#include "message_queue.h"

#define MK_LBUTTON 0x0001U
#define MK_RBUTTON 0x0002U
#define MK_SHIFT 0x0004U
#define MK_CONTROL 0x0008U
#define MK_MBUTTON 0x0010U

#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28

extern "C" {

// NULL when the module has no such table.
HACCEL WINAPI LoadAcceleratorsW(HINSTANCE hInstance, LPCWSTR lpTableName);
int WINAPI TranslateAcceleratorW(HWND hWnd, HACCEL hAccTable, LPMSG lpMsg);

}  // extern "C"
