#pragma once

#include <windef.h>

#include "../base/errors.h"
#include "../base/modules.h"

#define IMAGE_BITMAP 0U
#define IMAGE_ICON 1U
#define IMAGE_CURSOR 2U

#define LR_DEFAULTCOLOR 0x0000U
#define LR_MONOCHROME 0x0001U
#define LR_LOADFROMFILE 0x0010U
#define LR_DEFAULTSIZE 0x0040U
#define LR_CREATEDIBSECTION 0x2000U
#define LR_SHARED 0x8000U

#define IDC_ARROW MAKEINTRESOURCEW(32512)
#define IDC_IBEAM MAKEINTRESOURCEW(32513)
#define IDC_WAIT MAKEINTRESOURCEW(32514)
#define IDC_CROSS MAKEINTRESOURCEW(32515)
#define IDC_UPARROW MAKEINTRESOURCEW(32516)
#define IDC_HAND MAKEINTRESOURCEW(32649)

#define IDI_APPLICATION MAKEINTRESOURCEW(32512)

extern "C" {

// From the resources of a module, NULL for the program's own.
HANDLE WINAPI LoadImageW(HINSTANCE hinst, LPCWSTR lpszName, UINT uType, int cxDesired,
                         int cyDesired, UINT fuLoad);
HCURSOR WINAPI LoadCursorW(HINSTANCE hInstance, LPCWSTR lpCursorName);

}  // extern "C"
