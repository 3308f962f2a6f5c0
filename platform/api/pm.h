#pragma once

#include <windows.h>

#define PBT_TRANSITION 0x00000001U
#define PBT_RESUME 0x00000002U
#define PBT_POWERSTATUSCHANGE 0x00000004U
#define PBT_POWERINFOCHANGE 0x00000008U
#define POWER_NOTIFY_ALL 0xFFFFFFFFU

#define POWER_NAME 0x00000001U
#define POWER_FORCE 0x00001000U

#define POWER_STATE(flags) ((flags)&0xFFFF0000U)
#define POWER_STATE_ON 0x00010000U
#define POWER_STATE_OFF 0x00020000U
#define POWER_STATE_CRITICAL 0x00040000U
#define POWER_STATE_BOOT 0x00080000U
#define POWER_STATE_IDLE 0x00100000U
#define POWER_STATE_SUSPEND 0x00200000U
#define POWER_STATE_UNATTENDED 0x00400000U
#define POWER_STATE_RESET 0x00800000U
#define POWER_STATE_USERIDLE 0x01000000U
#define POWER_STATE_BACKLIGHTON 0x02000000U
#define POWER_STATE_PASSWORD 0x10000000U

// Length counts the bytes of SystemPowerState, which has as many characters as it needs.
struct _POWER_BROADCAST {
    DWORD Message;
    DWORD Flags;
    DWORD Length;
    WCHAR SystemPowerState[1];
};
using POWER_BROADCAST = _POWER_BROADCAST;
using PPOWER_BROADCAST = POWER_BROADCAST*;

static_assert(sizeof(POWER_BROADCAST) == 16 && offsetof(POWER_BROADCAST, Length) == 8);
static_assert(offsetof(POWER_BROADCAST, SystemPowerState) == 12);

// What follows the header of a PBT_POWERINFOCHANGE, in SystemPowerState's place.
struct _POWER_BROADCAST_POWER_INFO {
    DWORD dwNumLevels;
    DWORD dwBatteryLifeTime;
    DWORD dwBatteryFullLifeTime;
    DWORD dwBackupBatteryLifeTime;
    DWORD dwBackupBatteryFullLifeTime;
    BYTE bACLineStatus;
    BYTE bBatteryFlag;
    BYTE bBatteryLifePercent;
    BYTE bBackupBatteryFlag;
    BYTE bBackupBatteryLifePercent;
};
using POWER_BROADCAST_POWER_INFO = _POWER_BROADCAST_POWER_INFO;
using PPOWER_BROADCAST_POWER_INFO = POWER_BROADCAST_POWER_INFO*;

static_assert(sizeof(POWER_BROADCAST_POWER_INFO) == 28);

extern "C" {

// hMsgQ is a message queue; NULL on failure.
HANDLE WINAPI RequestPowerNotifications(HANDLE hMsgQ, DWORD Flags);
// These two return ERROR_SUCCESS or an error and do not set the last error.
DWORD WINAPI StopPowerNotifications(HANDLE h);
DWORD WINAPI SetSystemPowerState(LPCWSTR pwsSystemState, DWORD StateFlags, DWORD Options);

}  // extern "C"
