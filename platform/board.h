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

// A top-level window of another process as that process numbers it; 0 is none.
using NeighbourWindow = std::uint64_t;

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

    // The neighbours: programs that run as processes of their own on the same unit and share names
    // and the screen with this one. Asked on the thread that made the call, the hardware's too,
    // without any lock of the platform; an answer may take a round trip to the other process. A
    // neighbour that is gone or does not answer has nothing.

    // What a neighbour has under that name.
    virtual NamedKind FindNeighbourObject(std::wstring_view /*name*/) { return NamedKind::kNone; }

    // The highest window of a neighbour with that class and that title, case not counting; either
    // may be left open.
    virtual NeighbourWindow FindNeighbourWindow(std::optional<std::wstring_view> /*class_name*/,
                                                std::optional<std::wstring_view> /*title*/) {
        return 0;
    }

    // Whether a window that was found before is still there.
    virtual bool NeighbourWindowExists(NeighbourWindow /*window*/) { return false; }

    // Brings it forward, with the windows that it owns if asked to; false when it is gone.
    virtual bool BringNeighbourForward(NeighbourWindow /*window*/, bool /*with_owned*/) {
        return false;
    }
};

}  // namespace platform
