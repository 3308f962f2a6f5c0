#pragma once

#include <array>
#include <bitset>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
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

    // Lets time pass up to then, with all that comes of itself.
    void RunTo(Time time);
    Time now() const { return now_; }
    // When something comes of itself next; never before now().
    Time NextDeadline() const;
    // When the receive thread began to read.
    Time reading_since() const { return reading_since_; }

    // Events. Each is followed by Settle() once all of one moment are in.
    void Receive(std::span<const std::uint8_t> bytes);
    void Touch(bool down, int x, int y);
    enum class Message { kCommand, kTimer, kPower, kClose, kExit, kOther };
    void Post(Message message, std::uint64_t wparam = 0, std::uint64_t lparam = 0);
    void PostToNotice(Message message, std::uint64_t wparam);
    void PostToAll(std::uint64_t wparam, std::uint64_t lparam);
    void SupplyUnreadable();
    void Invalidate();
    void HoldPercent(std::uint8_t percent) { percent_ = percent; }
    void Settle();

    // What can be seen from outside.
    int step() const { return step_; }
    int percent() const { return percent_; }
    int bin_version() const { return bin_version_; }
    int running_state() const { return running_state_; }
    std::string version() const;
    bool closed() const { return closed_; }
    bool ac_offline() const { return ac_line_ == 0; }
    bool notice_up() const { return notice_.exists; }
    // The window's thread waits within a command.
    bool busy() const { return !stack_.empty() && !AtNotice(); }
    bool visible(Control control) const { return controls_[control].visible; }
    std::map<std::uint64_t, Time> timers() const;
    std::vector<Shown> screen() const;
    // At the place of the close button: X, pressed x, or what lies behind, black b or the key k.
    char close_place() const { return main_.close_place; }

    // What went out since it was cleared last.
    std::string log;
    std::vector<unsigned> frames;
    std::vector<std::string> reset_requests, scaler_requests;
    int reset_opens = 0, scaler_opens = 0;
    std::vector<unsigned> hal_codes, power_states;
    void ClearOutput();

    // Which rows of Rules() have been taken, by all models of the process.
    static std::vector<std::uint64_t>& RulesTaken();
    // Moves [from][to] of the step, both plus one.
    static std::array<std::array<std::uint64_t, 8>, 8>& Moves();

  private:
    struct ControlState {
        bool visible;
        bool pressed = false;
        std::wstring text;
        unsigned color;
    };
    struct Drawn {
        std::wstring text;
        unsigned color;
    };
    struct Window {
        bool exists = false;
        bool invalid = false;
        bool asked = false;  // another thread wants it painted at once
        std::map<int, Drawn> drawn;
        char close_place = 'b';
    };
    struct Posted {
        Window* window;
        Message message;
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
    // A handler that runs, at one of its operations.
    struct Activation {
        const std::vector<Op>* ops;
        std::size_t at = 0;
        std::uint64_t timer = 0;
        int stage = 0;  // of an operation that waits
        Time wake{};
    };

    // The window's thread.
    bool AtNotice() const;
    void RunThread();
    bool GoOn();
    bool Execute(Activation& running, const Op& op);
    bool DispatchNext();
    void Dispatch(const Posted& posted);
    void DispatchTouch(const TouchInput& touch);
    bool TakeTouch(const TouchInput& touch, int control);
    void Paint(Window& window);
    void PaintWizard();
    void PaintNotice();
    void Redraw(int control);
    void OnNoticeCommand(unsigned id);
    void Take(Trigger trigger, unsigned id, std::uint64_t timer = 0);
    void OnPower(std::uint64_t wparam, std::uint64_t lparam);
    void Close();

    // Operations that wait: false while they do; `stage` tells where they are.
    bool ShowNotice(Activation& running);
    bool Reset(Activation& running);
    bool StartVideo(Activation& running);
    bool Poll(Activation& running, int most, bool arrived);
    bool SleepFor(Activation& running, Time time);

    void OpenScalerLog();
    bool OpenScaler();
    void CloseScaler();
    void Scale(const char* function, const char* request, const char* failure);
    void ShowVideo();
    void SuspendSystem();

    // The receive thread.
    void OnReport(const Report& report);
    void OnRunningState(unsigned state);
    void OnCard(unsigned status, unsigned percent);
    void Send(unsigned command);

    void ToStep(int step);
    void Repaint();
    void Apply(Screen screen);
    void Arm(std::uint64_t id, int milliseconds);
    void Kill(std::uint64_t id);
    bool Holds(Guard guard) const;
    bool VersionKnown() const { return version_[1] != 0 || version_[4] != 0; }
    void Line(const std::string& line);
    void Failure(const char* function, const char* what, unsigned error);

    Time now_;
    Time reading_since_;
    bool receiving_ = false;  // the receive thread is at work, not the window's
    bool closed_ = false;

    int step_ = -1;
    std::uint8_t percent_ = 0;
    std::uint8_t bin_version_ = 0;
    std::uint8_t running_state_ = 0;
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
    bool rest_has_turn_ = false;
    FrameFinder finder_;
};

}  // namespace tests::model
