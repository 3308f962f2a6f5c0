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
#include "tests/support/platform_fixture.h"
#include "tests/support/recording_driver.h"
#include "unit/line/memory_line.h"

namespace tests {

using namespace std::chrono_literals;

// The whole program, its real entry point included, between touches of the screen and a DVR whose
// frames the test sends itself. All of it runs on the test's thread, which is the host thread.
// Texts are UTF-8.
class WizardHarness {
  public:
    // The step while there is no main frame.
    static constexpr int kNoFrame = -9;

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
    void Hide(LPCWSTR type, WORD resource) {
        platform::resource::Hide(type, MAKEINTRESOURCEW(resource));
    }

    // Starts WinMain on a thread of its own.
    void Start(int show = SW_SHOWNORMAL);
    // Starts, and runs the usual flow to that step; what was seen on the way is forgotten. Buttons
    // then: -1 Power On, 0 Next, 4 Next, 5 and 6 the close button.
    void GoTo(int step);

    void RunFor(std::chrono::microseconds time) { platform.RunFor(time); }
    bool Until(const std::function<bool()>& condition, std::chrono::seconds limit);

    // A tap on the button with that caption; false when there is none.
    bool Tap(const std::string& caption);

    // The DVR: bytes as they are, an indication, or the acknowledgement with its version.
    using Bytes = std::vector<std::uint8_t>;
    void SendBytes(std::span<const std::uint8_t> bytes) { line_->Send(bytes); }
    void Card(BYTE status) { Indicate(0x26, {status, 0}); }
    void Running(BYTE state) { Indicate(0x10, {state}); }
    void Percent(BYTE percent) { Indicate(0x2E, {percent}); }
    void Version(std::string_view text);
    void After(std::chrono::microseconds delay, std::function<void()> action) {
        platform::kernel::After(delay, std::move(action));
    }

    // The unit: the power supply changes; another application posts to the wizard's window.
    void SetAcLine(BYTE status);
    void Post(UINT message, WPARAM wparam = 0, LPARAM lparam = 0);
    // WM_XCOMMAND, as a button sends it.
    void Command(UINT id) { Post(2024, id); }

    int Step() const;
    bool Ended() const;

    // The screen now.
    platform::gdi::Surface Screen() const { return platform::window::ComposeScreen(); }
    std::optional<platform::gdi::PlacedText> Find(const std::string& text) const;
    bool Shows(const std::string& text) const { return Find(text).has_value(); }

    // The debug output since the last call, without prefix and line numbers: all lines, or those
    // that hold `part`.
    std::vector<std::string> TakeLog(std::string_view part = "");

    // Closes the window and waits for the end.
    void Close() {
        Post(WM_CLOSE);
        WaitForEnd();
    }
    void WaitForEnd();
    // The program must end with this exit code, without a window of its own.
    void ExpectExit(int code);

  private:
    void Indicate(std::uint8_t command, const Bytes& payload);
    void Receive(std::span<const std::uint8_t> bytes);

    std::shared_ptr<unit::MemoryLine> line_;
    Bytes from_program_;
    std::shared_ptr<platform::kernel::Thread> program_;
    int exit_code_ = 0;
    int expected_exit_ = 0;
};

}  // namespace tests
