#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/surface.h"
#include "platform/kernel/scheduler.h"
#include "platform/resource/module.h"
#include "platform/window/screen.h"
#include "tests/model/link_model.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/recording_driver.h"
#include "unit/line/memory_line.h"

namespace tests {

using namespace std::chrono_literals;

// The whole program, its real entry point included, between its screen and a DVR whose frames the
// test sends itself. All of it runs on the test's thread, which is the host thread. Texts are
// UTF-8.
class WizardHarness {
  public:
    using Pace = unit::MemoryLine::Pace;
    explicit WizardHarness(const platform::kernel::Options& options = {},
                           Pace pace = Pace::kBaudRate);
    // Closes the window if that has not been done, and expects a clean end.
    ~WizardHarness();
    WizardHarness(const WizardHarness&) = delete;
    WizardHarness& operator=(const WizardHarness&) = delete;

    Platform platform;
    std::shared_ptr<RecordingDriver> reset = std::make_shared<RecordingDriver>();   // "DVR1:"
    std::shared_ptr<RecordingDriver> scaler = std::make_shared<RecordingDriver>();  // "SCA0:"
    // The commands of the program's frames so far. Bytes that are no frame fail the test.
    std::vector<WORD> frames;

    // Removes the driver of that name ("COM9:").
    void Remove(const wchar_t* driver) { platform.board.drivers.erase(driver); }

    // Starts WinMain on a thread of its own.
    void Start(int show = SW_SHOWNORMAL);
    // Starts, and then puts the wizard at that step; the log of the start is forgotten.
    void StartAt(int step);

    void RunFor(std::chrono::microseconds time) { platform.RunFor(time); }
    bool Until(const std::function<bool()>& condition, std::chrono::seconds limit);

    // The DVR: bytes as they are, or an indication.
    using Bytes = std::vector<std::uint8_t>;
    void SendBytes(std::span<const std::uint8_t> bytes) { line_->Send(bytes); }
    void Card(BYTE status) { SendBytes(model::Frame(0x80, 0x26, Bytes{status, 0})); }
    void Running(BYTE state) { SendBytes(model::Frame(0x80, 0x10, Bytes{state})); }
    void Percent(BYTE percent) { SendBytes(model::Frame(0x80, 0x2E, Bytes{percent})); }

    // The unit: the power supply changes; another application posts to the wizard's window.
    void SetAcLine(BYTE status);
    void Post(UINT message, WPARAM wparam = 0, LPARAM lparam = 0);

    bool Ended() const;

    // The screen now.
    platform::gdi::Surface Screen() const { return platform::window::ComposeScreen(); }
    std::optional<platform::gdi::PlacedText> Find(const std::string& text) const;
    bool Shows(const std::string& text) const { return Find(text).has_value(); }

    // The debug output since the last call, without prefix and line numbers.
    std::vector<std::string> TakeLog();

    // Closes the window and waits for the end.
    void Close() {
        Post(WM_CLOSE);
        WaitForEnd();
    }
    void WaitForEnd();
    // The program must end with this exit code, without a window of its own.
    void ExpectExit(int code);

  private:
    void Receive(std::span<const std::uint8_t> bytes);

    std::shared_ptr<unit::MemoryLine> line_;
    model::FrameFinder from_program_;
    std::size_t outside_frames_ = 0;  // bytes of the program
    std::shared_ptr<platform::kernel::Thread> program_;
    int exit_code_ = 0;
    int expected_exit_ = 0;
};

}  // namespace tests
