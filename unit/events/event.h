#pragma once

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/board.h"
#include "platform/window/screen.h"
#include "unit/line/frame_monitor.h"

namespace unit {

// Bytes on the serial line where it enters the unit: what the program receives, after faults were
// applied, and what it sends, before they are.
struct LineBytes {
    struct Chunk {
        std::size_t begin;  // in `bytes`
        std::chrono::microseconds after;
    };

    Direction direction;
    std::vector<std::uint8_t> bytes;
    // Only in recordings, which join bytes that follow one another closely: the chunks after the
    // first one, with their delay after the event's time. Bytes of one chunk arrive together.
    std::vector<Chunk> later{};

    // Calls visit(delay, bytes) for each chunk.
    template <class Visit>
    void ForEachChunk(Visit visit) const {
        const std::span<const std::uint8_t> all(bytes);
        Chunk chunk{0, {}};
        for (const Chunk& next : later) {
            visit(chunk.after, all.subspan(chunk.begin, next.begin - chunk.begin));
            chunk = next;
        }
        visit(chunk.after, all.subspan(chunk.begin));
    }
};

// A finger on the screen, as the window manager received it.
struct FingerMoved {
    platform::window::Touch touch;
    int x;
    int y;
};

// The power supply from now on.
struct SupplyChanged {
    platform::PowerSupply supply;
};

// The SD card was inserted (the host's folder that acts as it) or removed.
struct CardMoved {
    bool in;
    std::string folder;
};

// The DVR restarts because its reset wire was pulled.
struct DvrReset {};

// One of the unit's named power-request events was set.
struct PowerRequested {
    std::wstring event_name;
};

// A call of the program to a stream driver: the name it opened ("SCA0:") and the request. The
// serial port's reads and writes are LineBytes instead.
struct DriverCalled {
    enum class Call { kOpen, kControl, kClose };
    std::wstring driver;
    Call call;
    DWORD code;  // of kControl
    std::vector<std::byte> input;
    DWORD error;  // the call's last error, ERROR_SUCCESS for none
};

// A message to all windows, as a cooperating application receives it.
struct BroadcastPosted {
    std::wstring name;  // its registered name; empty for a plain number
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

// The graphics plane changed.
struct ScreenDrawn {};

// The graphics plane has been unchanged for a while: a digest of its pixels, and its texts.
struct ScreenSettled {
    std::uint64_t digest = 0;
    std::vector<std::string> texts;

    bool operator==(const ScreenSettled&) const = default;
};

// The recorder does not know what the screen showed from that time until now: it kept changing, or
// the host kept the recorder from reading it.
struct ScreenUnseen {
    std::chrono::microseconds since;
};

struct UnitSuspended {};
struct UnitWoken {};

// A fault of the line was applied; the text says which one and to what.
struct FaultApplied {
    std::string text;
};

// The HAL began to refuse requests, or to accept them again.
struct HalSwitched {
    bool refuses;
};

// The battery driver began to fail, or to work again.
struct BatteryDriverSwitched {
    bool fails;
};

// The unit's clock was set forward; the event's time is the one before.
struct ClockJumped {
    std::chrono::microseconds forward;
};

// A call of the program was made to fail: its number among the calls of that name, from 1, and its
// last error.
struct CallFailed {
    std::string call;
    std::uint64_t number;
    DWORD error;
};

// The unit began to close the program.
struct ClosingBegan {};

// So many events are missing here: the disk was too slow for a unit that must not wait.
struct EventsLost {
    std::uint64_t count;
};

// The recording was ended in order.
struct RecordingEnded {};

// Everything that can happen at the unit's external interfaces. event_text.h has the text of each.
using Event = std::variant<LineBytes, LineEntry, FingerMoved, SupplyChanged, CardMoved, DvrReset,
                           PowerRequested, DriverCalled, BroadcastPosted, LineLogged,
                           OperatorMessage, ScreenDrawn, ScreenSettled, ScreenUnseen, UnitSuspended,
                           UnitWoken, FaultApplied, HalSwitched, BatteryDriverSwitched, ClockJumped,
                           CallFailed, ClosingBegan, EventsLost, RecordingEnded>;
inline constexpr std::size_t kEventKinds = std::variant_size_v<Event>;

struct TimedEvent {
    std::chrono::microseconds time;  // of the unit
    Event event;
};

}  // namespace unit
