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

#include "platform/device/memory_line.h"
#include "platform/device/stream_driver.h"
#include "platform/gdi/surface.h"
#include "platform/kernel/scheduler.h"
#include "platform/resource/module.h"
#include "platform/window/screen.h"
#include "tests/support/platform_fixture.h"

namespace tests {

using namespace std::chrono_literals;

// A stream driver that writes down what it is asked: the code, a blank, and the input in hex.
class RecordingDriver final : public platform::device::StreamDriver {
  public:
    struct Request {
        platform::kernel::Time time;
        std::string text;
    };

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

    // The texts since the last call.
    std::vector<std::string> Take();

    DWORD open_answer = ERROR_SUCCESS;
    DWORD request_answer = ERROR_SUCCESS;
    int opens = 0;  // those that failed too
    std::vector<Request> requests;
    int open_handles = 0;
};

// The whole program, its real entry point included, between a finger on the screen and a DVR whose
// every word a test says itself. All of it runs on the test's thread, which is the hardware's.
//
// Texts are UTF-8. A screen line is written "W text": the first letter is the colour, white, red or
// blue.
class WizardBench {
  public:
    struct Frame {
        platform::kernel::Time time;
        WORD command;
    };

    // The step while there is no frame.
    static constexpr int kNoFrame = -9;

    using Pace = platform::device::MemoryLine::Pace;
    explicit WizardBench(const platform::kernel::Options& options = {},
                         Pace pace = Pace::kBaudRate);
    // Closes the window if that has not been done, and expects a clean end.
    ~WizardBench();
    WizardBench(const WizardBench&) = delete;
    WizardBench& operator=(const WizardBench&) = delete;

    Platform platform;
    std::shared_ptr<RecordingDriver> reset = std::make_shared<RecordingDriver>();   // "DVR1:"
    std::shared_ptr<RecordingDriver> scaler = std::make_shared<RecordingDriver>();  // "SCA0:"
    // Every frame of the program so far. A frame that is none fails the test.
    std::vector<Frame> frames;

    // Takes the driver of that name ("COM9:") away.
    void Remove(const wchar_t* driver) { platform.board.drivers.erase(driver); }
    void Hide(LPCWSTR type, WORD resource) {
        platform::resource::Hide(type, MAKEINTRESOURCEW(resource));
    }

    // Starts WinMain on a thread of its own.
    void Start(int show = SW_SHOWNORMAL);
    // Starts, and walks the usual road to that step; what was seen on the way is forgotten. Buttons
    // then: -1 Power On, 0 Next, 4 Next, 5 and 6 the close button.
    void GoTo(int step);

    void RunFor(std::chrono::microseconds time) { platform.RunFor(time); }
    bool Until(const std::function<bool()>& condition, std::chrono::seconds limit);

    // The user. Tap returns false when no button has that caption.
    bool Tap(const std::string& caption);
    void TapAt(int x, int y) {
        Press(x, y);
        Release(x, y);
    }
    void Press(int x, int y) { Touch(platform::window::Touch::kDown, x, y, 20ms); }
    void Release(int x, int y) { Touch(platform::window::Touch::kUp, x, y, 5ms); }

    // The DVR: an indication or an acknowledgement of it, at once or after a while.
    using Bytes = std::vector<std::uint8_t>;
    void Indicate(WORD command, const Bytes& payload) { SendFrame(0x80, command, payload); }
    // Bytes as they are, frames or not.
    void SendBytes(std::span<const std::uint8_t> bytes) { line_->Send(bytes); }
    void Card(BYTE status) { Indicate(0x0026, {status, 0}); }
    void Running(BYTE state) { Indicate(0x0010, {state}); }
    void Percent(BYTE percent) { Indicate(0x002E, {percent}); }
    // As if a percent had come of which the window has not been told yet.
    void HoldPercent(BYTE percent);
    // All 17 characters.
    void Version(std::string_view text) {
        SendFrame(0x20, 0x802E, Bytes(text.begin(), text.end()));
    }
    void After(std::chrono::microseconds delay, std::function<void()> action) {
        platform::kernel::After(delay, std::move(action));
    }

    // The unit: the power supply changes; another application posts to the wizard's window, or to
    // the first window of another class.
    void SetAcLine(BYTE status);
    void Post(UINT message, WPARAM wparam = 0, LPARAM lparam = 0,
              LPCWSTR window_class = L"Tolvane");
    // WM_XCOMMAND, as a button sends it.
    void Command(UINT id) { Post(2024, id); }

    int Step() const;
    bool Ended() const;
    int ExitCode() const { return exit_code_; }

    // The screen now.
    platform::gdi::Surface Screen() const { return platform::window::ComposeScreen(); }
    std::uint32_t PixelAt(int x, int y) const { return Screen().row(y)[x]; }
    std::optional<platform::gdi::PlacedText> Find(const std::string& text) const;
    bool Shows(const std::string& text) const { return Find(text).has_value(); }
    // The captions in the row of large buttons, "X" for the close button: "Next Update X".
    std::string Buttons() const;
    // Everything that is written, from the top.
    std::vector<std::string> Lines() const { return LinesBetween(0, 480); }
    // What is written between the row of the versions and the row of buttons.
    std::vector<std::string> Instructions() const { return LinesBetween(130, 400); }

    // What came since the last call: commands in hex ("802E 8026"), debug output lines without
    // prefix and line numbers, all of them or those that hold `part`.
    std::string TakeFrames();
    std::vector<std::string> TakeLog(std::string_view part = "");
    // Forgets what came so far.
    void Mark();

    // Requests of the two ways of the scaler.
    static const std::vector<std::string> kVideoOn;
    static const std::vector<std::string> kVideoOff;

    // Closes the window and waits for the end.
    void Close() {
        Post(WM_CLOSE);
        WaitForEnd();
    }
    void WaitForEnd();
    // The program is to end with another exit code than 0, without having had a window.
    void ExpectExit(int code);

  private:
    void Touch(platform::window::Touch touch, int x, int y, std::chrono::milliseconds after) {
        platform::window::TouchScreen(touch, x, y);
        RunFor(after);
    }
    void Receive(std::span<const std::uint8_t> bytes);
    void SendFrame(BYTE type, WORD command, const Bytes& payload);
    std::vector<std::string> LinesBetween(int top, int bottom) const;

    std::shared_ptr<platform::device::MemoryLine> line_;
    Bytes from_program_;
    std::size_t taken_frames_ = 0;
    std::shared_ptr<platform::kernel::Thread> program_;
    int exit_code_ = 0;
    int expected_exit_ = 0;
};

}  // namespace tests
