#pragma once

#include <windows.h>

// The signed coordinates in the lParam of a mouse message.
#define GET_X_LPARAM(lp) ((int)(SHORT)LOWORD(lp))
#define GET_Y_LPARAM(lp) ((int)(SHORT)HIWORD(lp))
