#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>

#include "dvrsim/host.h"

namespace dvrsim {

// The actions that one owner has asked of the host and that have not run yet; all of them can be
// called off at once, and are when the owner goes.
class ScheduledActions {
  public:
    explicit ScheduledActions(Host& host) : host_(host) {}
    ~ScheduledActions() { CancelAll(); }
    ScheduledActions(const ScheduledActions&) = delete;
    ScheduledActions& operator=(const ScheduledActions&) = delete;

    // The key is for Cancel(), never 0.
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action);
    // A key whose action has run or was cancelled is let pass.
    void Cancel(std::uint64_t key);
    void CancelAll();

  private:
    Host& host_;
    std::uint64_t last_key_ = 0;
    std::map<std::uint64_t, std::uint64_t> host_ids_;
};

}  // namespace dvrsim
