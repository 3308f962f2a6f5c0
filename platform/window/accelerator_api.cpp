#include <windows.h>

#include "platform/kernel/scheduler.h"

// This unit has no keyboard, so no table can match; a table cannot be loaded either.
int TranslateAcceleratorW(HWND, HACCEL, LPMSG) {
    platform::kernel::SchedulingPoint();
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
}
