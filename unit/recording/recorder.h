#pragma once

#include <optional>
#include <string>

#include "unit/board/virtual_unit.h"
#include "unit/recording/recording_file.h"
#include "unit/recording/screen_watch.h"
#include "unit/traces/trace_file.h"

namespace unit {

// Records a run of the unit from its start, as a recording or a trace or both: a replay needs every
// input of the program, so a recording cannot begin in the middle. Host thread; the unit must
// outlive it.
class Recorder {
  public:
    Recorder(VirtualUnit& unit, const VirtualUnit::Options& options);
    ~Recorder() { Finish(); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // The paths of the files, each empty for none.
    struct Files {
        std::string recording;
        std::string trace;
    };
    // Begins, before VirtualUnit::Start. False with one line in `problem`. If writing fails later,
    // the unit says so and the run continues.
    bool Start(const Files& files, std::string& problem);

    // Ends the files, in order if the unit has closed the program. False if one is not complete.
    bool Finish();

  private:
    void Note(const TimedEvent& event);
    void Put(platform::kernel::Time time, const Event& event);
    void CheckFailedCalls();
    void NoteFailedCalls();

    VirtualUnit& unit_;
    RecordingHeader header_;
    bool records_ = false;
    RecordingFile file_;
    TraceFile trace_;
    std::optional<ScreenWatch> screens_;
    platform::kernel::EventId next_check_ = 0;
    std::size_t failed_calls_ = 0;
    bool calls_unknown_ = false;
    bool closing_ = false;
    // Last: ends before what its subscriber uses.
    EventHub::Subscription subscription_;
};

// When a screen of such a run is recorded.
ScreenWatch::Pace RecordingPace(const RecordingHeader& header);

}  // namespace unit
