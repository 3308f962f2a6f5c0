#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/board.h"
#include "platform/kernel/kernel.h"
#include "unit/events/event.h"
#include "unit/recording/line_burst.h"

namespace unit {

// The version of the files that this program writes and reads.
inline constexpr int kRecordingVersion = 1;

// No line of a recording is longer, its end not counted.
inline constexpr std::size_t kLongestLine = 16 * 1024;
// Nor a whole one: half a day of a busy line.
inline constexpr std::size_t kLongestRecording = std::size_t{64} * 1024 * 1024;

// What a replay must know before the first event.
struct RecordingHeader {
    std::string program;  // its version
    platform::kernel::Options kernel;
    // The unit's clock when the program started.
    platform::kernel::Time start{};
    platform::PowerSupply supply;
    std::vector<WORD> missing_bitmaps;

    bool Simulated() const { return kernel.mode == platform::kernel::Mode::kSimulated; }
};

// The screen as it stood still for a while: a digest of the graphics plane, and its texts.
struct SettledScreen {
    std::uint64_t digest = 0;
    std::vector<std::string> texts;

    bool operator==(const SettledScreen&) const = default;
};

// What the screen showed from that time until now is not known: it was in motion, or the host kept
// the recorder from looking.
struct ScreenUnseen {
    std::chrono::microseconds since;
};

// A call of the program that was made to fail: which one of that name, counted from 1, and its
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

using Moment = std::variant<LineBurst, FingerMoved, SupplyChanged, CardMoved, DvrReset,
                            PowerRequested, DriverCalled, SuspendChanged, BroadcastPosted,
                            SettledScreen, ScreenUnseen, BoardFaultSwitched, ClockJumped,
                            FaultApplied, CallFailed, ClosingBegan, EventsLost, RecordingEnded>;

struct RecordedMoment {
    std::chrono::microseconds time;  // of the unit
    int line;                        // of the file
    Moment moment;
};

struct Recording {
    std::string file;
    RecordingHeader header;
    std::vector<RecordedMoment> moments;
    // Whether it was ended in order; otherwise it ends where the recorder died, or where its last
    // line was torn off.
    bool complete = false;
};

}  // namespace unit
