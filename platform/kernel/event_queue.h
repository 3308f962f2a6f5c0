#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

#include "platform/kernel/clock.h"

namespace platform::kernel {

// Actions in order of time, and of arrival among equals. Not locked.
class EventQueue {
  public:
    using Action = std::function<void()>;

    std::uint64_t Add(Time when, Action action);
    void Cancel(std::uint64_t id);

    // kNever when empty.
    Time NextDue() const;
    // Takes the first action that is due at `now`; empty when none is.
    Action TakeDue(Time now);

  private:
    std::map<std::pair<Time, std::uint64_t>, Action> actions_;
    std::map<std::uint64_t, Time> when_;
    std::uint64_t last_id_ = 0;
};

}  // namespace platform::kernel
