#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "unit/board/virtual_unit.h"
#include "unit/recording/expected_output.h"
#include "unit/recording/recording.h"
#include "unit/recording/tolerance.h"

namespace unit {

// The result of a replay.
struct ReplayResult {
    std::optional<Difference> difference;
    // How many were equal until then.
    std::array<std::size_t, kOutputKinds> outputs{};
    std::size_t screens = 0;
    std::chrono::microseconds time{};  // of the unit, since the program's start
    std::chrono::microseconds lag{};   // of the replay behind the recording, at the end
    // The graphics plane where a difference was found.
    std::optional<Picture> screen;
    std::vector<std::string> screen_texts;
    // Notes on the recording and the run, a line each.
    std::vector<std::string> notes;
};

// Sees a replay's unit from its start to its end. Host thread.
class ReplayObserver {
  public:
    virtual ~ReplayObserver() = default;
    // Before VirtualUnit::Start.
    virtual void Begin(VirtualUnit& unit) = 0;
    // Before VirtualUnit::Close, and after it.
    virtual void BeforeClose() = 0;
    virtual void End() = 0;
};

// Runs the program in simulated time against the recording, which replaces operator, DVR and
// drivers. The calling thread becomes the host thread; no other unit may exist.
ReplayResult Replay(const Recording& recording, const Program& program, DebugLog& log,
                    const std::function<void(const std::string&)>& say,
                    const std::vector<ReplayObserver*>& observers = {});

// The result as lines for a person; the first one is the summary, with the words of the verdict and
// `times` at its end.
std::string ReplayReport(const Recording& recording, const ReplayResult& result,
                         const std::string& verdict, const std::string& times);

}  // namespace unit
