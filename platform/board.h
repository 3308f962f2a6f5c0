#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace platform::device {
class StreamDriver;
}

namespace platform {

// The power supply as the battery driver sees it; values as in SYSTEM_POWER_STATUS_EX2.
struct PowerSupply {
    BYTE ac_line_status = 1;
    BYTE battery_flag = 1;
    BYTE battery_life_percent = 100;
};

// What a board gives the platform. Every call may come on any thread of the platform and returns
// soon; none of them may call the API.
class Board {
  public:
    virtual ~Board() = default;

    // The stream driver of that name ("COM9:"), or null while none is loaded.
    virtual std::shared_ptr<device::StreamDriver> FindDriver(std::wstring_view name) = 0;

    // False when the battery driver does not answer.
    virtual bool ReadPowerSupply(PowerSupply& supply) = 0;

    // A request to the HAL; returns ERROR_SUCCESS or the last error to report.
    virtual DWORD HalRequest(DWORD code, std::span<const std::byte> input,
                             std::span<std::byte> output, DWORD& returned) = 0;

    // SetSystemPowerState; returns ERROR_SUCCESS or an error.
    virtual DWORD ChangeSystemPower(DWORD state_flags, DWORD options) = 0;

    // One piece of debug output as the program printed it, line ends included.
    virtual void DebugOutput(std::wstring_view text) = 0;

    // Something on the graphics plane changed since the last call.
    virtual void ScreenChanged() = 0;
};

}  // namespace platform
