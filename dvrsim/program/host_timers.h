#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace dvrsim {

// A clock that runs `speed` times as fast as the host's, and its timers. For use by one thread.
class HostTimers {
  public:
    explicit HostTimers(double speed) : speed_(speed) {}

    // Simulated time since the start.
    std::chrono::microseconds Now() const;
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action);
    void Cancel(std::uint64_t id);

    // Runs the actions that are due, in order of time.
    void RunDue();
    // Host time until the next action is due; nothing if there is none.
    std::optional<std::chrono::nanoseconds> UntilNext() const;

  private:
    using Clock = std::chrono::steady_clock;

    const double speed_;
    const Clock::time_point start_ = Clock::now();
    std::uint64_t last_id_ = 0;
    std::map<std::pair<std::chrono::microseconds, std::uint64_t>, std::function<void()>> due_;
    std::map<std::uint64_t, std::chrono::microseconds> times_;
};

}  // namespace dvrsim
