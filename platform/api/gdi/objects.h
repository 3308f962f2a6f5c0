#pragma once

#include <windef.h>

#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define HOLLOW_BRUSH NULL_BRUSH
#define WHITE_PEN 6
#define BLACK_PEN 7
#define NULL_PEN 8
#define SYSTEM_FONT 13
#define DEFAULT_PALETTE 15

#define BS_SOLID 0U
#define BS_NULL 1U
#define BS_HOLLOW BS_NULL

// The description of a brush by GetObjectW.
struct tagLOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    ULONG_PTR lbHatch;
};
using LOGBRUSH = tagLOGBRUSH;
using LPLOGBRUSH = LOGBRUSH*;

#define HGDI_ERROR ((HGDIOBJ)(LONG_PTR)-1)

extern "C" {

HBRUSH WINAPI CreateSolidBrush(COLORREF crColor);
HGDIOBJ WINAPI SelectObject(HDC hdc, HGDIOBJ hgdiobj);
int WINAPI GetObjectW(HGDIOBJ hgdiobj, int cbBuffer, LPVOID lpvObject);
// An object that is selected into a device context cannot be deleted.
BOOL WINAPI DeleteObject(HGDIOBJ hObject);

}  // extern "C"
