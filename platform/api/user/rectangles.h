#pragma once

#include <windef.h>

extern "C" {

BOOL WINAPI SetRect(LPRECT lprc, int xLeft, int yTop, int xRight, int yBottom);
BOOL WINAPI SetRectEmpty(LPRECT lprc);
BOOL WINAPI OffsetRect(LPRECT lprc, int dx, int dy);
BOOL WINAPI EqualRect(CONST RECT* lprc1, CONST RECT* lprc2);
BOOL WINAPI IsRectEmpty(CONST RECT* lprc);
// The right and the bottom edge are outside.
BOOL WINAPI PtInRect(CONST RECT* lprc, POINT pt);

}  // extern "C"
