#pragma once

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/board.h"
#include "platform/window/screen.h"

namespace unit {

enum class Direction { kToUnit, kToDvr };

// Bytes on the serial line where it enters the unit: what the program is given and what it sends,
// after a fault on their way in and before one on their way out.
struct LineBytes {
    Direction direction;
    std::vector<std::uint8_t> bytes;
};

// A finger on the screen, as it reached the window manager.
struct FingerMoved {
    platform::window::Touch touch;
    int x;
    int y;
};

// The power supply as it is from now on.
struct SupplyChanged {
    platform::PowerSupply supply;
};

// The SD card went in (with the host's folder that acts as it) or out.
struct CardMoved {
    bool in;
    std::string folder;
};

// One of the unit's named power-request events was raised.
struct PowerRequested {
    std::wstring event_name;
};

// A call of the program to a stream driver: the name it opened ("SCA0:"), and what it asked. The
// serial port's reads and writes are LineBytes instead.
struct DriverCalled {
    enum class Call { kOpen, kControl, kClose };
    std::wstring driver;
    Call call;
    DWORD code;  // of kControl
    std::vector<std::byte> input;
    DWORD error;  // ERROR_SUCCESS, or what the program was told
};

// A message to all windows, as a cooperating application hears it.
struct BroadcastPosted {
    std::wstring name;  // it was registered with; empty for a plain number
    UINT message;
    WPARAM wparam;
    LPARAM lparam;
};

// A whole line of the program's debug output, without its line end.
struct LineLogged {
    std::string text;
};

// A line for the operator, who may have to do something by hand.
struct OperatorMessage {
    std::string line;
};

struct ScreenDrawn {};

// The unit went to sleep or woke up.
struct SuspendChanged {
    bool suspended;
};

// A fault of the line was applied; the line says which one and to what.
struct FaultApplied {
    std::string text;
};

// A fault of the board was switched on or off.
struct BoardFaultSwitched {
    enum class Fault { kHalRefuses, kBatteryDriverFails };
    Fault fault;
    bool on;
};

// The unit's clock was put forward; the event's time is the one before.
struct ClockJumped {
    std::chrono::microseconds forward;
};

// The DVR restarts because its reset wire was pulled.
struct DvrReset {};

using Event =
    std::variant<LineBytes, FingerMoved, SupplyChanged, CardMoved, PowerRequested, DriverCalled,
                 BroadcastPosted, LineLogged, ScreenDrawn, SuspendChanged, FaultApplied,
                 BoardFaultSwitched, ClockJumped, DvrReset, OperatorMessage>;

struct TimedEvent {
    std::chrono::microseconds time;  // of the unit
    Event event;
};

}  // namespace unit
