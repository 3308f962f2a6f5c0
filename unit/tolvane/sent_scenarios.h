#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "platform/kernel/scheduler.h"
#include "unit/control/control_server.h"
#include "unit/scenario/scenario_run.h"

namespace unit {

// Follows the scenarios that other processes send, on the unit that runs already, one at a time.
// Hardware's thread.
class SentScenarios {
  public:
    // `op` must outlive it. What the options would say and trace, the sender is told.
    SentScenarios(Operator& op, RunOptions options) : operator_(op), options_(std::move(options)) {}
    ~SentScenarios();
    SentScenarios(const SentScenarios&) = delete;
    SentScenarios& operator=(const SentScenarios&) = delete;

    void Run(const SentScenario& sent);

  private:
    void Look();
    void End();

    Operator& operator_;
    const RunOptions options_;
    std::optional<ScenarioRun> run_;
    std::shared_ptr<Answer> answer_;
    platform::kernel::EventId next_look_ = 0;
};

}  // namespace unit
