#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

namespace dvrsim {

// The environment of a DVR: its clock, its timers and its serial line. The DVR calls it, and it
// calls the DVR, on one thread only.
class Host {
  public:
    virtual ~Host() = default;

    // Time since a fixed start.
    virtual std::chrono::microseconds Now() const = 0;

    // Runs `action` once, `delay` from now and never inside this call. The id is for Cancel().
    virtual std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action) = 0;

    // Ignores an id whose action has run or was cancelled.
    virtual void Cancel(std::uint64_t id) = 0;

    // Sends the bytes on the line.
    virtual void Transmit(std::span<const std::uint8_t> bytes) = 0;
};

// The pending actions of one owner at a Host. The destructor cancels them.
class ScheduledActions {
  public:
    explicit ScheduledActions(Host& host) : host_(host) {}
    ~ScheduledActions() { CancelAll(); }
    ScheduledActions(const ScheduledActions&) = delete;
    ScheduledActions& operator=(const ScheduledActions&) = delete;

    // Returns the key for Cancel(); it is never 0.
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action);
    // Ignores a key whose action has run or was cancelled.
    void Cancel(std::uint64_t key);
    void CancelAll();

  private:
    Host& host_;
    std::uint64_t last_key_ = 0;
    std::map<std::uint64_t, std::uint64_t> host_ids_;
};

}  // namespace dvrsim
