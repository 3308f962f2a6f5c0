#pragma once

#include <optional>
#include <string>

#include "platform/kernel/scheduler.h"
#include "unit/scenario/context.h"
#include "unit/scenario/scenario.h"

namespace unit {

// A run of a scenario on a unit, driven by actions of the host thread: the scenario runs while the
// host thread does.
class ScenarioRun {
  public:
    // Collects events from now on; Start begins with the first command. `op` and the unit must
    // outlive the run. With a `memory`, conditions know the events that it has.
    ScenarioRun(Operator& op, Scenario scenario, RunOptions options,
                std::shared_ptr<EventMemory> memory = nullptr);
    ~ScenarioRun();
    ScenarioRun(const ScenarioRun&) = delete;
    ScenarioRun& operator=(const ScenarioRun&) = delete;

    void Start();
    // Ends the run as failed at the current command.
    void Stop(const std::string& why);

    bool finished() const { return finished_; }
    bool passed() const { return finished_ && problem_.empty(); }
    // "FILE:LINE: COMMAND: what was wrong", then what is on the screen; empty unless failed.
    const std::string& problem() const { return problem_; }
    // The command that failed; null unless failed, and for a scenario without commands.
    const Step* failed_step() const { return failed_step_; }
    const Scenario& scenario() const { return scenario_; }
    // The index of the current command; the number of commands after the last one.
    std::size_t position() const { return position_; }
    // How many numbered pictures were saved.
    std::size_t pictures() const { return context_.pictures; }
    // Of the unit, since Start.
    platform::kernel::Duration duration() const;

  private:
    // Of the current command.
    struct Progress {
        platform::kernel::Time began;
        std::size_t next_event;  // to look at
        std::int64_t found;      // events so far
    };
    enum class Verdict { kDone, kNotYet, kFailed };

    void PollIn(platform::kernel::Duration time);
    void Poll();
    Verdict Proceed(const Action& action);
    Verdict Proceed(const Pause& pause);
    Verdict Proceed(const Check& check);
    void Begin(const Step& step);
    bool Holds(const Check& check);
    std::string Actual(const Check& check);
    void Fail(const std::string& why);
    std::string SaveReport();
    void Finish();

    const RunOptions options_;
    const Scenario scenario_;
    ScenarioContext context_;
    const platform::kernel::Duration poll_interval_;  // in the unit's time
    platform::kernel::Time started_{};
    platform::kernel::Time ended_{};
    std::size_t position_ = 0;
    std::optional<Progress> progress_;
    std::string why_;  // of the command's failure
    platform::kernel::EventId next_poll_ = 0;
    bool finished_ = false;
    std::string problem_;
    const Step* failed_step_ = nullptr;
};

}  // namespace unit
