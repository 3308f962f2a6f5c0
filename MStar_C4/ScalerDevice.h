#pragma once

#include <windows.h>

// The scaler's driver, NULL while closed, and the event held while it is open.
extern HANDLE g_hScalerDevice;
extern HANDLE g_hAtscNotifyEvent;

inline bool IsUsable(HANDLE device) {
    return device != nullptr && device != INVALID_HANDLE_VALUE;
}
