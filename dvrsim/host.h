#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
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

}  // namespace dvrsim
