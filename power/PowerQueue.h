#pragma once

#include <windows.h>

// The size of a power notification: room for one broadcast record and its power-state name.
inline constexpr DWORD kNotificationBytes = 216;
inline constexpr DWORD kQueuedNotifications = 3;
