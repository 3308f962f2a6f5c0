#pragma once

#include <windows.h>

#include <functional>
#include <memory>

#include "platform/device/stream_driver.h"

namespace unit {

// "DVR1:", the stream driver of the DVR's reset wire: control code 0x0881 with the single byte 2
// resets the DVR. Any thread; calls `reset` on the caller's.
class DvrResetDriver final : public platform::device::StreamDriver {
  public:
    explicit DvrResetDriver(std::function<void()> reset) : reset_(std::move(reset)) {}

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

  private:
    const std::function<void()> reset_;
};

}  // namespace unit
