#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "platform/board.h"
#include "platform/device/stream_driver.h"
#include "platform/kernel/kernel.h"

namespace tests {

// The plainest board: drivers by name, a power supply, and an ear for the debug output.
class PlainBoard final : public platform::Board {
  public:
    std::map<std::wstring, std::shared_ptr<platform::device::StreamDriver>, std::less<>> drivers;
    platform::PowerSupply supply;
    bool supply_readable = true;
    DWORD hal_answer = ERROR_SUCCESS;
    std::vector<DWORD> hal_codes;
    std::function<void(std::span<const std::byte> input)> on_hal_request;
    std::vector<DWORD> power_states;

    std::wstring debug_output() const;
    // The debug output's whole lines, without their ends.
    std::vector<std::wstring> lines() const;
    void ClearOutput();

    std::shared_ptr<platform::device::StreamDriver> FindDriver(std::wstring_view name) override;
    bool ReadPowerSupply(platform::PowerSupply& out) override;
    DWORD HalRequest(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                     DWORD& returned) override;
    DWORD ChangeSystemPower(DWORD state_flags, DWORD options) override;
    void DebugOutput(std::wstring_view text) override;
    void ScreenChanged() override {}

  private:
    mutable std::mutex mutex_;
    std::wstring output_;
};

// A platform for the length of a test. The test's thread is the hardware's.
class Platform {
  public:
    explicit Platform(const platform::kernel::Options& options = {});
    // Expects that every thread has ended and nothing was left open.
    ~Platform();

    PlainBoard board;

    // Runs `body` on a thread of the program, and the hardware until it has ended. Fails the test
    // when it does not end within `limit` of unit time.
    void Run(std::function<void()> body,
             platform::kernel::Duration limit = std::chrono::minutes(10));

    // Lets unit time pass.
    void RunFor(platform::kernel::Duration time);

    // Handles that a test means to leave open.
    void AllowHandles(std::size_t count) { allowed_handles_ = count; }

  private:
    std::size_t allowed_handles_ = 0;
};

}  // namespace tests
