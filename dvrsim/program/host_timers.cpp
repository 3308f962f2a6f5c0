#include "dvrsim/program/host_timers.h"

#include <algorithm>

namespace dvrsim {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::nanoseconds;

microseconds HostTimers::Now() const {
    return duration_cast<microseconds>((Clock::now() - start_) * speed_);
}

std::uint64_t HostTimers::After(microseconds delay, std::function<void()> action) {
    const microseconds time = Now() + delay;
    const std::uint64_t id = ++last_id_;
    due_[{time, id}] = std::move(action);
    times_[id] = time;
    return id;
}

void HostTimers::Cancel(std::uint64_t id) {
    const auto found = times_.find(id);
    if (found == times_.end())
        return;
    due_.erase({found->second, id});
    times_.erase(found);
}

void HostTimers::RunDue() {
    // Actions that are added meanwhile wait for the next call, so that this one ends.
    const microseconds now = Now();
    while (!due_.empty() && due_.begin()->first.first <= now) {
        auto entry = due_.extract(due_.begin());
        times_.erase(entry.key().second);
        entry.mapped()();
    }
}

std::optional<nanoseconds> HostTimers::UntilNext() const {
    if (due_.empty())
        return std::nullopt;
    const microseconds left = std::max(due_.begin()->first.first - Now(), microseconds::zero());
    return duration_cast<nanoseconds>(nanoseconds(left) / speed_);
}

}  // namespace dvrsim
