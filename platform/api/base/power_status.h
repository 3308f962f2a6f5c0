#pragma once

#include <windef.h>

#include "errors.h"

#define AC_LINE_OFFLINE 0x00
#define AC_LINE_ONLINE 0x01
#define AC_LINE_BACKUP_POWER 0x02
#define AC_LINE_UNKNOWN 0xFF

#define BATTERY_FLAG_HIGH 0x01
#define BATTERY_FLAG_LOW 0x02
#define BATTERY_FLAG_CRITICAL 0x04
#define BATTERY_FLAG_CHARGING 0x08
#define BATTERY_FLAG_NO_BATTERY 0x80
#define BATTERY_FLAG_UNKNOWN 0xFF

#define BATTERY_PERCENTAGE_UNKNOWN 0xFF
#define BATTERY_LIFE_UNKNOWN 0xFFFFFFFFU

#define BATTERY_CHEMISTRY_ALKALINE 0x01
#define BATTERY_CHEMISTRY_NICD 0x02
#define BATTERY_CHEMISTRY_NIMH 0x03
#define BATTERY_CHEMISTRY_LION 0x04
#define BATTERY_CHEMISTRY_LIPOLY 0x05
#define BATTERY_CHEMISTRY_UNKNOWN 0xFF

// Times in seconds, voltages in mV, currents in mA, the temperature in tenths of a degree Celsius.
struct _SYSTEM_POWER_STATUS_EX2 {
    BYTE ACLineStatus;
    BYTE BatteryFlag;
    BYTE BatteryLifePercent;
    BYTE Reserved1;
    DWORD BatteryLifeTime;
    DWORD BatteryFullLifeTime;
    BYTE Reserved2;
    BYTE BackupBatteryFlag;
    BYTE BackupBatteryLifePercent;
    BYTE Reserved3;
    DWORD BackupBatteryLifeTime;
    DWORD BackupBatteryFullLifeTime;
    DWORD BatteryVoltage;
    DWORD BatteryCurrent;
    DWORD BatteryAverageCurrent;
    DWORD BatteryAverageInterval;
    DWORD BatterymAHourConsumed;
    DWORD BatteryTemperature;
    DWORD BackupBatteryVoltage;
    BYTE BatteryChemistry;
};
using SYSTEM_POWER_STATUS_EX2 = _SYSTEM_POWER_STATUS_EX2;
using PSYSTEM_POWER_STATUS_EX2 = SYSTEM_POWER_STATUS_EX2*;
using LPSYSTEM_POWER_STATUS_EX2 = SYSTEM_POWER_STATUS_EX2*;

static_assert(sizeof(SYSTEM_POWER_STATUS_EX2) == 56);
static_assert(offsetof(SYSTEM_POWER_STATUS_EX2, BatteryLifeTime) == 4);
static_assert(offsetof(SYSTEM_POWER_STATUS_EX2, BackupBatteryFlag) == 13);
static_assert(offsetof(SYSTEM_POWER_STATUS_EX2, BatteryVoltage) == 24);
static_assert(offsetof(SYSTEM_POWER_STATUS_EX2, BatteryChemistry) == 52);

extern "C" {

// Returns the number of bytes filled in, 0 on failure.
DWORD WINAPI GetSystemPowerStatusEx2(PSYSTEM_POWER_STATUS_EX2 pSystemPowerStatusEx2, DWORD dwLen,
                                     BOOL fUpdate);

}  // extern "C"
