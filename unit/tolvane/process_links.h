#pragma once

#include <functional>
#include <memory>
#include <string>

#include "unit/control/control_server.h"
#include "unit/control/first_unit.h"
#include "unit/tolvane/sent_scenarios.h"

namespace unit {

// What ties a unit to the other processes: its control socket, and the unit that had that before
// it, if there is one. Made before the unit starts and destroyed after it was closed, on the
// hardware's thread.
class ProcessLinks {
  public:
    // `sent` is how the scenarios run that other processes send.
    ProcessLinks(Operator& op, const std::string& name, RunOptions sent);
    ProcessLinks(const ProcessLinks&) = delete;
    ProcessLinks& operator=(const ProcessLinks&) = delete;

    // Whether another unit was first: the program may end without a window of its own, and the host
    // shows none before it.
    bool second() const { return first_->there(); }

    // Brings the host's window forward, when the program's window was.
    void OnRaise(std::function<void()> raise) { raise_ = std::move(raise); }

  private:
    std::function<void()> raise_;
    SentScenarios scenarios_;
    ControlServer control_;
    const std::shared_ptr<FirstUnit> first_;
};

}  // namespace unit
