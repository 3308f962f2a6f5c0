#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace dvrsim {

// Time and actions to come, N times as fast as the host's clock. One thread.
class HostTimers {
  public:
    explicit HostTimers(double speed) : speed_(speed) {}

    // Since the start, in the simulation's time.
    std::chrono::microseconds Now() const;
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action);
    void Cancel(std::uint64_t id);

    // Runs the actions whose time has come, in its order.
    void RunDue();
    // The host's time until the next action is due; empty when there is none.
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
