#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "unit/board/virtual_unit.h"
#include "unit/recording/difference.h"
#include "unit/recording/output_book.h"
#include "unit/recording/recording.h"

namespace unit {

// How a replay ended.
struct ReplayResult {
    std::optional<Difference> difference;
    // What was alike until then.
    std::array<std::size_t, kOutputKinds> outputs{};
    std::size_t screens = 0;
    std::chrono::microseconds time{};      // of the unit, since the program's start
    std::chrono::microseconds lateness{};  // by which inputs had to wait at the end
    // The graphics plane where a difference was found.
    std::optional<Picture> screen;
    std::vector<std::string> screen_texts;
    // What must be known about the recording or the run besides, a line each.
    std::vector<std::string> notes;
};

// Runs the program in simulated time against the recording, which takes the place of hands, DVR
// and drivers. On the calling thread, which becomes the hardware's; no unit may be there.
ReplayResult Replay(const Recording& recording, const Program& program, DebugLog& log,
                    const std::function<void(const std::string&)>& say);

// The result in lines for a person; the first says what it comes to.
std::string ReplayReport(const Recording& recording, const ReplayResult& result);

}  // namespace unit
