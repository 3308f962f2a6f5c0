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

// Another process of the unit: its objects by name, its window, and how often the window was
// brought forward with its owned windows.
struct OtherProcess final : platform::OtherProcesses {
    std::map<std::wstring, platform::NamedKind, std::less<>> objects;
    std::wstring window_class;
    std::wstring title;
    platform::OtherProcessWindow window = 0;
    int brought_forward = 0;
    int questions = 0;

    platform::NamedKind FindObject(std::wstring_view name) override {
        CountQuestion();
        const auto object = objects.find(name);
        return object == objects.end() ? platform::NamedKind::kNone : object->second;
    }
    platform::OtherProcessWindow FindWindow(
        std::optional<std::wstring_view> wanted_class,
        std::optional<std::wstring_view> wanted_title) override {
        CountQuestion();
        const bool matches = wanted_class.value_or(window_class) == window_class &&
                             wanted_title.value_or(title) == title;
        return matches ? window : 0;
    }
    bool BringForward(platform::OtherProcessWindow wanted, bool with_owned) override {
        CountQuestion();
        brought_forward += with_owned ? 1 : 0;
        return wanted == window;
    }

  private:
    // Hangs when the question comes with the kernel lock held.
    void CountQuestion() {
        platform::kernel::HandleCount();
        ++questions;
    }
};

// A minimal board: drivers by name, a power supply, another process, and the recorded debug output.
class PlainBoard final : public platform::Board {
  public:
    std::map<std::wstring, std::shared_ptr<platform::device::StreamDriver>, std::less<>> drivers;
    platform::PowerSupply supply;
    bool supply_readable = true;
    DWORD hal_result = ERROR_SUCCESS;
    std::vector<DWORD> hal_codes;
    std::function<void(std::span<const std::byte> input)> on_hal_request;
    // Called after each output, on its thread.
    std::function<void(std::wstring_view text)> on_debug_output;
    std::vector<DWORD> power_states;
    std::vector<DWORD> power_options;  // one for each
    OtherProcess other_process;

    std::wstring debug_output() const {
        const std::scoped_lock lock(mutex_);
        return output_;
    }
    // The debug output's whole lines, without their ends.
    std::vector<std::wstring> lines() const;
    void ClearOutput() {
        const std::scoped_lock lock(mutex_);
        output_.clear();
    }

    std::shared_ptr<platform::device::StreamDriver> FindDriver(std::wstring_view name) override {
        const auto driver = drivers.find(name);
        return driver == drivers.end() ? nullptr : driver->second;
    }
    bool ReadPowerSupply(platform::PowerSupply& out) override {
        out = supply;
        return supply_readable;
    }
    DWORD HalRequest(DWORD code, std::span<const std::byte> input, std::span<std::byte>,
                     DWORD&) override {
        hal_codes.push_back(code);
        if (on_hal_request)
            on_hal_request(input);
        return hal_result;
    }
    DWORD ChangeSystemPower(DWORD state_flags, DWORD options) override {
        power_states.push_back(state_flags);
        power_options.push_back(options);
        return ERROR_SUCCESS;
    }
    void DebugOutput(std::wstring_view text) override {
        {
            const std::scoped_lock lock(mutex_);
            output_ += text;
        }
        if (on_debug_output)
            on_debug_output(text);
    }
    void ScreenChanged() override {}
    platform::OtherProcesses* other_processes() override { return &other_process; }

  private:
    mutable std::mutex mutex_;
    std::wstring output_;
};

// A platform for the duration of a test. The test's thread is the host thread.
class Platform {
  public:
    explicit Platform(const platform::kernel::Options& options = {});
    // Expects that every thread has ended and nothing was left open.
    ~Platform();

    PlainBoard board;

    // Runs `body` on a thread of the program, and the host thread's actions until it has ended.
    // Fails the test when it does not end within `limit` of unit time.
    void Run(std::function<void()> body,
             platform::kernel::Duration limit = std::chrono::minutes(10));

    // Lets unit time pass.
    void RunFor(platform::kernel::Duration time);

    // Handles that a test leaves open on purpose.
    void AllowHandles(std::size_t count) { allowed_handles_ = count; }

  private:
    std::size_t allowed_handles_ = 0;
};

}  // namespace tests
