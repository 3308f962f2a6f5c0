#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
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

// The kinds of kernel objects that have names; there is one name space for all of them.
enum class NamedKind { kNone, kEvent, kMutex, kMessageQueue };

// A top-level window of another process, by that process's own number; 0 is none.
using OtherProcessWindow = std::uint64_t;

// The other processes of the unit: programs that share names and the screen with this one. Any
// thread, host threads included, without any lock of the platform. A call may take a round trip to
// the other process; a process that has ended or does not reply has nothing.
class OtherProcesses {
  public:
    virtual ~OtherProcesses() = default;

    // The kind of the object that another process has under that name.
    virtual NamedKind FindObject(std::wstring_view name) = 0;

    // The highest window with that class and that title; upper and lower case are the same, and
    // either may be left open.
    virtual OtherProcessWindow FindWindow(std::optional<std::wstring_view> class_name,
                                          std::optional<std::wstring_view> title) = 0;

    // Brings a window forward, on request with the windows that it owns; false when it is gone.
    virtual bool BringForward(OtherProcessWindow window, bool with_owned) = 0;
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

    // Debug output as the program printed it, line ends included.
    virtual void DebugOutput(std::wstring_view text) = 0;

    // Something on the graphics plane changed since the last call.
    virtual void ScreenChanged() = 0;

    // Null when this process is the only one.
    virtual OtherProcesses* other_processes() { return nullptr; }
};

}  // namespace platform
