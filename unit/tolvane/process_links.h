#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/kernel/scheduler.h"
#include "unit/control/control_server.h"
#include "unit/control/first_unit.h"
#include "unit/scenario/scenario_run.h"

namespace unit {

// Runs the scenarios that other processes send, one at a time, on the running unit. Host thread.
class SentScenarios {
  public:
    // `op` must outlive it. The sender gets the lines that the options would print.
    SentScenarios(Operator& op, RunOptions options) : operator_(op), options_(std::move(options)) {}
    ~SentScenarios();
    SentScenarios(const SentScenarios&) = delete;
    SentScenarios& operator=(const SentScenarios&) = delete;

    void Run(const SentScenario& sent);

  private:
    void Poll();
    void End();

    Operator& operator_;
    const RunOptions options_;
    std::optional<ScenarioRun> run_;
    std::shared_ptr<Reply> reply_;
    platform::kernel::EventId next_poll_ = 0;
};

// Connects a unit with other processes: its control socket, and the unit that had that socket
// before, if there is one. Make it before the unit starts and destroy it after the unit was closed.
// Host thread.
class ProcessLinks {
  public:
    // `sent` holds the options for scenarios that other processes send.
    ProcessLinks(Operator& op, const std::string& name, RunOptions sent);
    ProcessLinks(const ProcessLinks&) = delete;
    ProcessLinks& operator=(const ProcessLinks&) = delete;

    // Whether another unit has the socket. The program then may end without showing its window.
    bool second() const { return first_->there(); }

    // Called when another process asks for the program's window, to bring the host's window
    // forward.
    void OnRaise(std::function<void()> raise) { raise_ = std::move(raise); }

  private:
    std::function<void()> raise_;
    SentScenarios scenarios_;
    ControlServer control_;
    const std::shared_ptr<FirstUnit> first_;
};

}  // namespace unit
