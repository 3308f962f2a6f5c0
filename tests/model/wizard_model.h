#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "tests/model/link_model.h"
#include "tests/model/wizard_tables.h"

namespace tests::model {

using Time = std::chrono::microseconds;

// What stands around the wizard.
struct World {
    // 0, or the error with which a driver refuses to be opened, or a request.
    unsigned reset_open = 0, reset_request = 0;    // "DVR1:"
    unsigned scaler_open = 0, scaler_request = 0;  // "SCA0:"
    unsigned hal = 0;
    bool has_link = true;  // "COM9:"
    std::uint8_t ac_line = 1;
};

// Where what is compared went, or what it is.
// clang-format off
enum Channel {
    kLog, kFrames, kResetRequests, kResetOpens, kScalerRequests, kScalerOpens, kHalCodes,
    kPowerStates, kView, kChannels
};
// Of windows; also what may be posted to the wizard's window or its notice. The power message
// stands for one that is registered.
enum Message : unsigned {
    kCloseMessage = 0x10, kMenuMessage = 0x111, kTimerMessage = 0x113, kCommandMessage = 2024,
    kPowerMessage = 0xC000
};
// clang-format on
// What went out since it was taken last, opens that failed too, and what can be seen now.
using Account = std::array<std::string, kChannels>;

// What can be seen of the wizard, but for its screen.
std::string ViewText(int step, int percent, int image_version, int running_state,
                     const std::string& dvr_version, const std::map<std::uint64_t, Time>& timers,
                     bool notice_up);

// A text on the screen, and within which place its middle lies.
struct Shown {
    std::wstring text;
    unsigned color;
    long left, top, right, bottom;
};

// The wizard, told a second time: the window's thread with its messages, timers and waits, and the
// receive thread, from outside in. Events come in at the time that the clock was set to last.
class WizardModel {
  public:
    WizardModel(const World& around, Time start);

    World world;
    Account output;

    // Lets time pass up to then, with all that comes of itself.
    void RunTo(Time time);
    Time now() const { return now_; }
    // When something comes of itself next; never before now().
    Time NextDeadline() const;
    // When the receive thread began to read.
    Time reading_since() const { return reading_since_; }

    // Events. Each is followed by Settle() once all of one moment are in.
    void Receive(std::span<const std::uint8_t> bytes);
    void Touch(bool down, int x, int y) { touches_.push_back({down, x, y}); }
    void Post(unsigned message, std::uint64_t wparam = 0, std::uint64_t lparam = 0);
    void PostToNotice(unsigned message, std::uint64_t wparam);
    void PostToAll(std::uint64_t wparam, std::uint64_t lparam);
    void SupplyUnreadable();
    void Invalidate() { main_.invalid = true; }
    void SetPercent(int percent) { percent_ = static_cast<std::uint8_t>(percent); }
    void Settle() { RunThread(); }

    std::string Look() const;
    std::vector<Shown> screen() const;
    // At the place of the close button: X, pressed x, or what lies behind, black b or the key k.
    char close_place() const { return main_.close_place; }
    int step() const { return step_; }
    bool closed() const { return closed_; }
    bool ac_offline() const { return ac_line_ == 0; }
    bool notice_up() const { return notice_.exists; }
    // The window's thread waits within a command.
    bool busy() const { return !stack_.empty() && !AtNotice(); }
    bool visible(Control control) const { return controls_[control].visible; }

    // Which rules, and which moves of the step, no model of the process has taken.
    static std::string NeverTaken();

  private:
    enum class Trigger { kCommand, kTimer, kRunningState, kCard, kPower };
    struct Activation;
    // One thing that is done, at once or in a while.
    struct Op {
        using Act = void (WizardModel::*)(int);
        using Wait = bool (WizardModel::*)(Activation&);
        Op(Act what, int with = 0) : act(what), value(with) {}
        Op(Wait what) : wait(what) {}
        Act act = nullptr;
        int value = 0;
        Wait wait = nullptr;  // false while it waits
    };
    // The first that fits is the one that counts.
    struct Rule {
        Trigger trigger;
        unsigned id;  // command, timer, or the value that was reported
        int step;
        bool (WizardModel::*guard)() const;
        std::vector<Op> ops;
    };
    static std::span<const Rule> Rules();
    // A rule that is carried out, at one of its operations.
    struct Activation {
        const std::vector<Op>* ops;
        std::size_t at = 0;
        int stage = 0;  // of an operation that waits
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
        bool asked = false;  // another thread wants it painted at once
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

    void ToStep(int step);
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
    bool GoOn();
    void Take(Trigger trigger, unsigned id);
    bool DispatchNext();
    bool DispatchInput();
    bool DispatchTimer();
    bool PaintNext(bool asked);
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
    bool receiving_ = false;  // the receive thread is at work, not the window's
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
    std::uint64_t fired_ = 0;     // the timer that fired last
    bool rest_has_turn_ = false;  // after a paint that was asked for
    FrameFinder finder_;

    static std::set<const Rule*> rules_taken_;
    static std::set<std::pair<int, int>> moves_;
};

}  // namespace tests::model
