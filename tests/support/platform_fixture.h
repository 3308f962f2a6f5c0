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

// A process beside the one under test: what it has under which name, its window, and how often it
// was asked to bring that forward, the owned ones with it.
struct Neighbour {
    std::map<std::wstring, platform::NamedKind, std::less<>> objects;
    std::wstring window_class;
    std::wstring title;
    platform::NeighbourWindow window = 0;
    int brought_forward = 0;
    int questions = 0;
};

// The plainest board: drivers by name, a power supply, a neighbour, and an ear for the debug
// output.
class PlainBoard final : public platform::Board {
  public:
    std::map<std::wstring, std::shared_ptr<platform::device::StreamDriver>, std::less<>> drivers;
    platform::PowerSupply supply;
    bool supply_readable = true;
    DWORD hal_answer = ERROR_SUCCESS;
    std::vector<DWORD> hal_codes;
    std::function<void(std::span<const std::byte> input)> on_hal_request;
    std::vector<DWORD> power_states;
    std::vector<DWORD> power_options;  // one for each
    Neighbour neighbour;

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
        return hal_answer;
    }
    DWORD ChangeSystemPower(DWORD state_flags, DWORD options) override {
        power_states.push_back(state_flags);
        power_options.push_back(options);
        return ERROR_SUCCESS;
    }
    void DebugOutput(std::wstring_view text) override {
        const std::scoped_lock lock(mutex_);
        output_ += text;
    }
    void ScreenChanged() override {}
    platform::NamedKind FindNeighbourObject(std::wstring_view name) override {
        CountQuestion();
        const auto object = neighbour.objects.find(name);
        return object == neighbour.objects.end() ? platform::NamedKind::kNone : object->second;
    }
    platform::NeighbourWindow FindNeighbourWindow(std::optional<std::wstring_view> class_name,
                                                  std::optional<std::wstring_view> title) override {
        CountQuestion();
        const bool fits = class_name.value_or(neighbour.window_class) == neighbour.window_class &&
                          title.value_or(neighbour.title) == neighbour.title;
        return fits ? neighbour.window : 0;
    }
    bool NeighbourWindowExists(platform::NeighbourWindow window) override {
        CountQuestion();
        return window == neighbour.window;
    }
    bool BringNeighbourForward(platform::NeighbourWindow window, bool with_owned) override {
        CountQuestion();
        neighbour.brought_forward += with_owned ? 1 : 0;
        return window == neighbour.window;
    }

  private:
    // Hangs when the question comes with the kernel's lock held.
    void CountQuestion() {
        platform::kernel::HandleCount();
        ++neighbour.questions;
    }

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
