#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

namespace dvrsim {

// Where a DVR lives: its clock and its serial line. The DVR calls it, and is called by it, on one
// thread only.
class Host {
  public:
    virtual ~Host() = default;

    // Time since some fixed start.
    virtual std::chrono::microseconds Now() const = 0;

    // Runs `action` once, `delay` from now and never inside this call. The id is for Cancel().
    virtual std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action) = 0;

    // An id whose action has run or was cancelled is let pass.
    virtual void Cancel(std::uint64_t id) = 0;

    // The bytes leave on the line.
    virtual void Transmit(std::span<const std::uint8_t> bytes) = 0;
};

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
