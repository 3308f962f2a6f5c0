#pragma once

#include <windef.h>

extern "C" {

BOOL WINAPI EqualRect(CONST RECT* lprc1, CONST RECT* lprc2);
// The right and the bottom edge are outside.
BOOL WINAPI PtInRect(CONST RECT* lprc, POINT pt);

}  // extern "C"
