#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "unit/scenario/scenario_run.h"

namespace unit {

// Shows on the progress line how far the runs of scenarios are. Host thread.
class RunProgress {
  public:
    // Of that many scenarios.
    explicit RunProgress(std::size_t scenarios) : scenarios_(scenarios) {}

    // Another scenario begins.
    void Begin();
    // Draws the line if it is time for it. Cheap: for the host thread's loop.
    void Update(const ScenarioRun& run);
    // The scenario has ended.
    void End();

  private:
    using HostClock = std::chrono::steady_clock;

    // A percent that the DVR reported, and when it was noticed.
    struct Report {
        int percent;
        HostClock::time_point time;
    };

    std::string Text(const ScenarioRun& run);
    std::string WizardText();
    std::string TimeLeft(HostClock::time_point now) const;

    const std::size_t scenarios_;
    std::size_t begun_ = 0;
    HostClock::duration done_{};  // the time that the scenarios before took
    HostClock::time_point began_{};
    std::optional<Report> first_report_;  // of the update that runs now
};

}  // namespace unit
