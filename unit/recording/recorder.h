#pragma once

#include <optional>
#include <string>

#include "unit/board/virtual_unit.h"
#include "unit/recording/recording_file.h"
#include "unit/recording/screen_watch.h"

namespace unit {

// Records a run of the unit from its start: a replay must know everything that the program was ever
// given, so a recording cannot begin in the middle. Hardware's thread; it must be gone before the
// unit is.
class Recorder {
  public:
    Recorder(VirtualUnit& unit, const VirtualUnit::Options& options);
    // Ends the recording: in order when the unit has closed the program.
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // Begins, before VirtualUnit::Start. False with one line in `problem`. What cannot be written
    // later on is said, and the run goes on.
    bool Start(const std::string& path, std::string& problem);

  private:
    void Note(const TimedEvent& event);
    void LookForFailedCalls();
    void NoteFailedCalls();

    VirtualUnit& unit_;
    RecordingHeader header_;
    RecordingFile file_;
    std::optional<ScreenWatch> screens_;
    platform::kernel::EventId next_look_ = 0;
    std::size_t failed_calls_ = 0;
    bool calls_unknown_ = false;
    bool closing_ = false;
    // Ends before what it notes down to.
    EventHub::Subscription subscription_;
};

// How the screens of such a run are looked at.
ScreenWatch::Pace RecordingPace(const RecordingHeader& header);

}  // namespace unit
