#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/kernel.h"
#include "unit/board/virtual_unit.h"
#include "unit/events/event_hub.h"
#include "unit/recording/recording.h"
#include "unit/recording/replay.h"
#include "unit/recording/screen_watch.h"
#include "unit/report/excerpt.h"
#include "unit/report/screen_gallery.h"
#include "unit/scenario/scenario.h"

namespace unit {

// What a report shows of a run. Of each list it has the first and the latest entries.
struct RunRecord {
    template <class Value>
    struct At {
        std::chrono::microseconds time;  // of the unit
        Value value;
    };
    // When a line of a scenario began first, and how often.
    struct Began {
        std::chrono::microseconds first{};
        std::size_t count = 0;
    };

    std::string program;  // its version
    platform::kernel::Options kernel;
    std::chrono::microseconds begin{};  // of the unit's clock
    std::chrono::microseconds end{};    // before the unit closed the program
    bool recorded = false;              // the frames and the resets are those of a recording
    Excerpt<LineEntry> frames{1000, 3000};
    Excerpt<At<std::string>> log{1000, 3000};
    // Everything else at the external interfaces.
    Excerpt<TimedEvent> events{500, 1500};
    // The same for the marks of the plot: faults, resets and changes of the power.
    Excerpt<TimedEvent> marks{100, 300};
    Excerpt<At<int>> percents{1000, 1000};
    // The name of each screen, in the order in which they were shown.
    Excerpt<At<std::string>> steps{100, 200};
    ScreenGallery screens;
    std::vector<std::string> firmware;  // the DVR's, as it reported it; at most 20
    // A scenario's commands that set or clear faults, and the faults that were set at the end.
    Excerpt<At<std::string>> fault_commands{100, 300};
    std::vector<std::string> faults_at_end;
    std::vector<platform::kernel::FailedCall> failed_calls;
    // By file and line.
    std::map<std::pair<std::string, int>, Began> lines;
};

// A mark as text.
std::string MarkText(const Event& event);
std::string MarkText(const platform::kernel::FailedCall& call);

// Collects what a report shows, from a unit's start to its end. Host thread.
class RunCollector final : public ReplayObserver {
  public:
    // Before VirtualUnit::Start.
    void Begin(VirtualUnit& unit) override;
    // A command of the scenario begins.
    void NoteCommand(const Step& step);
    // The screens after this are the closing program's.
    void BeforeClose() override;
    // After VirtualUnit::Close, while the unit exists.
    void End() override;

    // Adds what a replay's unit does not have: the traffic and the resets of the recording, up to
    // the replay's end. After End.
    void NoteRecorded(const Recording& recording);

    // Complete after End.
    const RunRecord& record() const { return record_; }

  private:
    void Note(const TimedEvent& timed);
    void NoteFrame(LineEntry entry);
    void NoteLastBytes();
    void NoteScreen(const ScreenSettled& screen);

    VirtualUnit* unit_ = nullptr;
    std::mutex mutex_;  // guards what events change: the record's lists of them, and line_
    RunRecord record_;
    LineMonitor line_;
    std::uint64_t seen_version_ = 0;  // of the screen
    std::optional<ScreenWatch> screens_;
    EventHub::Subscription subscription_;
};

}  // namespace unit
