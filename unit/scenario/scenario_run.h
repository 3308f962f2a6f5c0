#pragma once

#include <optional>
#include <string>

#include "platform/kernel/scheduler.h"
#include "unit/scenario/scenario.h"
#include "unit/scenario/stage.h"

namespace unit {

// A scenario on its way on a unit, driven by actions of the hardware: whoever runs the hardware
// runs the scenario. Hardware's thread.
class ScenarioRun {
  public:
    // Takes note of what happens from now on; Start begins with the first command. `op` must
    // outlive the run, and the run must be gone before the unit is.
    ScenarioRun(Operator& op, Scenario scenario, RunOptions options);
    ~ScenarioRun();
    ScenarioRun(const ScenarioRun&) = delete;
    ScenarioRun& operator=(const ScenarioRun&) = delete;

    void Start();
    // Ends it as failed at the command where it stands.
    void Stop(const std::string& why);

    bool finished() const { return finished_; }
    bool passed() const { return finished_ && problem_.empty(); }
    // "FILE:LINE: COMMAND: what was wrong; what stands on the screen"; empty while there is
    // nothing to tell.
    const std::string& problem() const { return problem_; }
    const Scenario& scenario() const { return scenario_; }
    // The command that it is at, or behind the last one.
    std::size_t position() const { return position_; }
    // Of the unit, since Start.
    platform::kernel::Duration duration() const;

  private:
    // How far the command has come that it is at.
    struct Progress {
        platform::kernel::Time began;
        std::size_t looked_to;  // among the happenings
        std::int64_t found;
    };
    enum class Verdict { kDone, kNotYet, kFailed };

    void LookIn(platform::kernel::Duration time);
    void Look();
    Verdict Proceed(const Act& act);
    Verdict Proceed(const Pause& pause);
    Verdict Proceed(const Check& check);
    void Begin(const Step& step);
    bool IsSo(const Check& check);
    std::string Instead(const Check& check);
    void Fail(const std::string& why);
    void Finish();

    const RunOptions options_;
    const Scenario scenario_;
    Stage stage_;
    // How often it looks at what it waits for, in the unit's time.
    const platform::kernel::Duration glance_;
    platform::kernel::Time started_{};
    platform::kernel::Time ended_{};
    std::size_t position_ = 0;
    std::optional<Progress> progress_;
    std::string why_;  // the command failed
    platform::kernel::EventId next_look_ = 0;
    bool finished_ = false;
    std::string problem_;
};

}  // namespace unit
