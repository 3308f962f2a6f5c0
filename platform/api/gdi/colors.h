#pragma once

#include <windef.h>

// Red is the lowest byte.
#define RGB(red, green, blue) \
    ((COLORREF)(((BYTE)(red) | ((WORD)((BYTE)(green)) << 8)) | (((DWORD)(BYTE)(blue)) << 16)))
#define GetRValue(color) (LOBYTE(color))
#define GetGValue(color) (LOBYTE(((WORD)(color)) >> 8))
#define GetBValue(color) (LOBYTE((color) >> 16))

#define CLR_INVALID 0xFFFFFFFFU
