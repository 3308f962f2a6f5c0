#include <windows.h>

#include "platform/kernel/api_call.h"

// This unit has no keyboard, so no table can match; a table cannot be loaded either.
int TranslateAcceleratorW(HWND, HACCEL, LPMSG) {
    const platform::kernel::ApiCall call("TranslateAcceleratorW");
    if (call.Fails())
        return 0;
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
}
