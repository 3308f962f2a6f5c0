#pragma once

#include <functional>
#include <list>
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

// Runs the single commands of the scenario language that other processes send. Any number runs at a
// time; all of them know the events since the unit began or since the last `forget`. Host thread.
class SentCommands {
  public:
    // `op` must outlive it.
    SentCommands(Operator& op, RunOptions options);
    ~SentCommands();
    SentCommands(const SentCommands&) = delete;
    SentCommands& operator=(const SentCommands&) = delete;

    void Run(SentCommand sent);

  private:
    struct Active {
        Active(Operator& op, Scenario scenario, RunOptions options,
               std::shared_ptr<EventMemory> memory, std::shared_ptr<Reply> sender)
            : run(op, std::move(scenario), std::move(options), std::move(memory)),
              reply(std::move(sender)) {}

        ScenarioRun run;
        std::shared_ptr<Reply> reply;
        platform::kernel::EventId next_poll = 0;
    };

    std::shared_ptr<EventMemory> NewMemory() const;
    void Poll(std::list<Active>::iterator active);

    Operator& operator_;
    const RunOptions options_;
    std::shared_ptr<EventMemory> memory_;
    std::list<Active> active_;
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
    SentCommands commands_;
    ControlServer control_;
    const std::shared_ptr<FirstUnit> first_;
};

}  // namespace unit
