#include <pkfuncs.h>
#include <pm.h>
#include <windows.h>

#include <cstddef>
#include <span>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"

using namespace platform;

DWORD GetSystemPowerStatusEx2(PSYSTEM_POWER_STATUS_EX2 status, DWORD size, BOOL) {
    const kernel::ApiCall call("GetSystemPowerStatusEx2");
    if (call.Fails())
        return 0;
    if (!status || size < sizeof *status) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    PowerSupply supply;
    if (!kernel::CurrentBoard().ReadPowerSupply(supply)) {
        SetLastError(ERROR_GEN_FAILURE);
        return 0;
    }
    *status = {};
    status->ACLineStatus = supply.ac_line_status;
    status->BatteryFlag = supply.battery_flag;
    status->BatteryLifePercent = supply.battery_life_percent;
    status->BatteryLifeTime = BATTERY_LIFE_UNKNOWN;
    status->BatteryFullLifeTime = BATTERY_LIFE_UNKNOWN;
    status->BackupBatteryFlag = BATTERY_FLAG_NO_BATTERY;
    status->BackupBatteryLifePercent = BATTERY_PERCENTAGE_UNKNOWN;
    status->BackupBatteryLifeTime = BATTERY_LIFE_UNKNOWN;
    status->BackupBatteryFullLifeTime = BATTERY_LIFE_UNKNOWN;
    return sizeof *status;
}

DWORD SetSystemPowerState(LPCWSTR, DWORD state_flags, DWORD options) {
    const kernel::ApiCall call("SetSystemPowerState");
    if (call.Fails())
        return GetLastError();
    return kernel::CurrentBoard().ChangeSystemPower(state_flags, options);
}

BOOL KernelIoControl(DWORD code, LPVOID input, DWORD input_size, LPVOID output, DWORD output_size,
                     LPDWORD returned) {
    const kernel::ApiCall call("KernelIoControl");
    if (call.Fails())
        return FALSE;
    DWORD count = 0;
    const DWORD error = kernel::CurrentBoard().HalRequest(
        code, {static_cast<const std::byte*>(input), input ? input_size : 0},
        {static_cast<std::byte*>(output), output ? output_size : 0}, count);
    if (returned)
        *returned = count;
    if (error == ERROR_SUCCESS)
        return TRUE;
    SetLastError(error);
    return FALSE;
}
