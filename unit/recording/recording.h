#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/board.h"
#include "platform/kernel/kernel.h"
#include "unit/events/event.h"

namespace unit {

// No recording is longer: half a day of a busy line.
inline constexpr std::size_t kMaxRecordingBytes = std::size_t{64} * 1024 * 1024;

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

struct RecordedEvent {
    std::chrono::microseconds time;  // of the unit
    int line;                        // of the file
    Event event;
};

struct Recording {
    std::string file;
    RecordingHeader header;
    std::vector<RecordedEvent> events;
    // Whether the recording was ended in order; otherwise it ends where the recorder died, or
    // before its last, incomplete line.
    bool complete = false;
};

// Reads a recording. A last line without a line end is ignored, as a crash leaves one; anything
// else that is wrong gives nothing, with "FILE:LINE: what is wrong; what is allowed" in `problem`.
// Any thread.
std::optional<Recording> ReadRecording(const std::string& file, std::string& problem);

// The lines of the header, from the first one to "begin", each with its line end.
std::string HeaderText(const RecordingHeader& header);

// The version in the program's resources ("1.0.2.0"), "unknown" when there is none. Host thread,
// while a unit exists.
std::string ProgramVersion();

}  // namespace unit
