#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "tests/model/link_model.h"
#include "tests/model/wizard_tables.h"

namespace tests::model {

using Time = std::chrono::microseconds;

// The wizard's environment.
struct World {
    // 0, or the error with which a driver refuses an open or a request.
    unsigned reset_open = 0, reset_request = 0;    // "DVR1:"
    unsigned scaler_open = 0, scaler_request = 0;  // "SCA0:"
    unsigned hal = 0;
    bool has_link = true;  // "COM9:"
    std::uint8_t ac_line = 1;
};

// What is compared.
// clang-format off
enum Channel {
    kLog, kFrames, kResetRequests, kResetOpens, kScalerRequests, kScalerOpens, kHalCodes,
    kPowerStates, kView, kChannels
};
// Window messages. The power message stands for the registered one.
enum Message : unsigned {
    kCloseMessage = 0x10, kMenuMessage = 0x111, kTimerMessage = 0x113, kCommandMessage = 2024,
    kPowerMessage = 0xC000
};
// clang-format on
// By channel: the output since the last comparison, failed opens included, and the state now.
using Output = std::array<std::string, kChannels>;

// The wizard's state as text, without its screen.
std::string ViewText(int step, int percent, int image_version, int running_state,
                     const std::string& dvr_version, const std::map<std::uint64_t, Time>& timers,
                     bool notice_up);

// A text on the screen, and the rectangle that holds its middle.
struct Shown {
    std::wstring text;
    unsigned color;
    long left, top, right, bottom;
};

// The reference model of the wizard: the window's thread with its messages, timers and waits, and
// the receive thread. Events come at the model's current time.
class WizardModel {
  public:
    WizardModel(const World& environment, Time start);

    World world;
    Output output;

    // Lets time pass, with all timers and ends of waits until then.
    void RunTo(Time time);
    Time now() const { return now_; }
    // The next timer or end of a wait; never before now().
    Time NextDeadline() const;
    // The start of the receive thread's current read.
    Time reading_since() const { return reading_since_; }

    // Events. Call Settle() after all events of one time.
    void Receive(std::span<const std::uint8_t> bytes);
    void Touch(bool down, int x, int y) { touches_.push_back({down, x, y}); }
    void Post(unsigned message, std::uint64_t wparam = 0, std::uint64_t lparam = 0);
    void PostToNotice(unsigned message, std::uint64_t wparam);
    void PostToAll(std::uint64_t wparam, std::uint64_t lparam);
    void SupplyUnreadable();
    void Invalidate() { main_.invalid = true; }
    void SetPercent(int percent) { percent_ = static_cast<std::uint8_t>(percent); }
    void Settle() { RunThread(); }

    std::string View() const;
    std::vector<Shown> screen() const;
    // At the place of the close button: X, pressed x, or the background, black b or the key colour
    // k.
    char close_place() const { return main_.close_place; }
    int step() const { return step_; }
    bool closed() const { return closed_; }
    bool ac_offline() const { return ac_line_ == 0; }
    bool notice_up() const { return notice_.exists; }
    // The window's thread waits within a command.
    bool busy() const { return !stack_.empty() && !AtNotice(); }
    bool visible(Control control) const { return controls_[control].visible; }

  private:
    enum class Trigger { kCommand, kTimer, kRunningState, kCard, kPower };
    struct Activation;
    // One operation of a rule: done at once, or a wait.
    struct Op {
        using Act = void (WizardModel::*)(int);
        using Wait = bool (WizardModel::*)(Activation&);
        Op(Act what, int with = 0) : act(what), value(with) {}
        Op(Wait what) : wait(what) {}
        Act act = nullptr;
        int value = 0;
        Wait wait = nullptr;  // false while it waits
    };
    // What an event does; the first rule that fits counts.
    struct Rule {
        Trigger trigger;
        unsigned id;  // command, timer, or reported value
        int step;
        bool (WizardModel::*guard)() const;
        std::vector<Op> ops;
    };
    static std::span<const Rule> Rules();
    // A rule in execution, at one of its operations.
    struct Activation {
        const std::vector<Op>* ops;
        std::size_t at = 0;
        int phase = 0;  // of an operation that waits
        Time wake{};
    };
    struct ControlState {
        bool visible;
        bool pressed = false;
        std::wstring text;
        unsigned color;
    };
    struct Window {
        bool exists = false;
        bool invalid = false;
        bool requested = false;  // another thread wants it painted at once
        std::map<int, std::pair<std::wstring, unsigned>> drawn;
        char close_place = 'b';
    };
    struct Posted {
        Window* window;
        unsigned message;
        std::uint64_t wparam, lparam;
    };
    struct TimerState {
        std::uint64_t id;
        Time period, due;
    };
    struct TouchInput {
        bool down;
        int x, y;
    };

    bool CardIsOut() const { return card_ == 0; }
    bool CardIsIn() const { return card_ == 1; }
    bool HasPercent() const { return percent_ != 0; }
    bool IsAt100Percent() const { return percent_ == 100; }
    bool WasOffline() const { return was_offline_; }

    void ToStep(int step) { step_ = step; }
    void ToStepIfImage(int step);
    void ForgetVersion(int = 0) { version_ = {}; }
    void ForgetCardReport(int) { card_report_ = false; }
    void SetRunningState(int state) { running_state_ = state; }
    void Show(int control) { controls_[control].visible = true; }
    void Hide(int control) { controls_[control].visible = false; }
    void HideThree(int = 0);
    void ShowOnly(int control);
    void GoOffline(int = 0);
    void GoOnline(int) { was_offline_ = false; }
    void Repaint(int = 0);
    void Arm100(int timer) { Arm(timer, 100); }
    void Arm2000(int timer) { Arm(timer, 2000); }
    void KillFired(int) { Kill(fired_); }
    void LogReset(int) { Line("\tCMainFrame::OnXCommand, Reset"); }
    void Send(int command);
    void SuspendSystem(int);
    void PostClose(int) { Post(kCloseMessage); }

    bool ShowNotice(Activation& running);
    bool Reset(Activation& running);
    bool StartVideo(Activation& running);
    bool AwaitCardReport(Activation& running) { return Poll(running, 40, card_report_); }
    bool AwaitPercent(Activation& running) { return Poll(running, 20, percent_ != 0); }
    bool AwaitReboot(Activation& running) { return Poll(running, 99, running_state_ != 3); }
    bool Pause(Activation& running) { return SleepFor(running, std::chrono::seconds(1)); }
    bool Poll(Activation& running, int most, bool arrived);
    bool SleepFor(Activation& running, Time time);

    // The window's thread.
    bool AtNotice() const;
    void RunThread();
    bool Continue();
    void Take(Trigger trigger, unsigned id);
    bool DispatchNext();
    bool DispatchInput();
    bool DispatchTimer();
    bool PaintNext(bool requested);
    void Dispatch(const Posted& posted);
    void DispatchToNotice(const Posted& posted);
    void DispatchTouch(const TouchInput& touch);
    bool TakeTouch(const TouchInput& touch, int control);
    void Paint(Window& window);
    void PaintWizard();
    void PaintStep();
    void PaintNotice();
    void Redraw(int control);
    void OnNoticeCommand(unsigned id);
    void OnPower(std::uint64_t wparam, std::uint64_t lparam);
    void Close();

    bool OpenScaler();
    void CloseScaler();
    void Scale(const char* function, const char* request, const char* failure);
    void ShowVideo();

    // The receive thread.
    void OnReport(const Report& report);
    void OnRunningState(unsigned state);
    void OnCard(unsigned status, unsigned percent);

    void Apply(Screen screen);
    void Arm(int id, int milliseconds);
    void Kill(std::uint64_t id);
    bool VersionKnown() const { return version_[1] != 0 || version_[4] != 0; }
    void Line(const std::string& line) { output[kLog] += "[Tolvane.exe] " + line + "\r\n"; }
    void Failure(const char* function, const char* what, unsigned error);

    Time now_;
    Time reading_since_;
    bool receiving_ = false;  // the receive thread runs, not the window's
    bool closed_ = false;

    int step_ = -1;
    std::uint8_t percent_ = 0;
    std::uint8_t image_version_ = 0;
    int running_state_ = 0;
    std::array<char, 8> version_{};
    std::uint8_t card_ = 0xFF;
    bool card_report_ = false;
    std::uint8_t ac_line_;
    bool was_offline_ = false;
    bool scaler_open_ = false;

    std::vector<ControlState> controls_;
    Window main_;
    Window notice_;
    bool notice_ended_ = false;
    std::vector<Activation> stack_;
    std::deque<Posted> posted_;
    std::deque<TouchInput> touches_;
    std::vector<TimerState> timers_;
    std::uint64_t fired_ = 0;        // the timer that fired last
    bool others_have_turn_ = false;  // after a requested painting
    FrameFinder finder_;
};

}  // namespace tests::model
