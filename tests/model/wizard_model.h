#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "tests/model/wizard_state.h"

namespace tests::model {

// The reference model of the wizard: the window's thread with its messages, timers and waits, and
// the receive thread. Events come at the model's current time.
class WizardModel : public WizardState {
  public:
    WizardModel(const World& environment, Time start)
        : WizardState(environment, start), reading_since_(start) {
        if (world.has_link)
            for (const int query : {0x8010, 0x8011, 0x802E, 0x8026})
                Send(query);
        Arm100(kCardOutTimer);
        // A wizard that starts without supply shows the offline screen at once.
        if (ac_line_ == 0)
            GoOffline();
        RunThread();
    }

    // Lets time pass, with all timers and ends of waits until then.
    void RunTo(Time time) {
        while (!closed_ && NextDeadline() <= time) {
            now_ = std::max(now_, NextDeadline());
            RunThread();
        }
        now_ = time;
    }
    // The next timer or end of a wait; never before now().
    Time NextDeadline() const {
        if (busy())
            return stack_.back().wake;
        const auto next = std::ranges::min_element(timers_, {}, &TimerState::due);
        return next == timers_.end() ? Time::max() : next->due;
    }
    // The start of the receive thread's current read.
    Time reading_since() const { return reading_since_; }

    // Events. Call Settle() after all events of one time.
    void Receive(std::span<const std::uint8_t> bytes) {
        if (!world.has_link || closed_)
            return;
        receiving_ = true;
        for (const std::uint8_t byte : bytes)
            if (const auto report = finder_.Add(byte))
                OnReport(*report);
        receiving_ = false;
        reading_since_ = now_;
    }
    void Touch(bool down, int x, int y) { touches_.push_back({down, x, y}); }
    void Settle() { RunThread(); }

    // The window's thread waits within a command.
    bool busy() const { return !stack_.empty() && !stack_.back().at_notice; }

  private:
    enum class Trigger { kCommand, kTimer, kRunningState, kCard, kPower };
    // One operation of a rule.
    struct Op {
        void (WizardModel::*act)(int);
        int value = 0;
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
    // A rule in execution by the window's thread: its next operation, and how long that waits.
    struct Activation {
        const std::vector<Op>* ops;
        std::size_t next = 0;
        bool at_notice = false;
        Time wake{};
        std::function<bool()> over{};  // asked at `wake` and then every 100 ms
    };
    struct TouchInput {
        bool down;
        int x, y;
    };

    // The operations of the rules that take time.

    // Shows it until it ends, unless it is there already.
    void ShowNotice(int) {
        if (notice_.exists)
            return;
        Line("\tCNotify::OnInitDialog");
        notice_.exists = notice_.invalid = true;
        notice_ended_ = false;
        for (int control = kWizardControls; control < kAllControls; ++control) {
            const ControlRow& row = Controls()[control];
            controls_[control] = {true, false, row.text, row.color};
        }
        stack_.back().at_notice = true;
        Wait(0s, [this] {
            notice_ = {};
            std::erase_if(posted_,
                          [this](const Posted& posted) { return posted.window == &notice_; });
            stack_.back().at_notice = false;
            return true;
        });
    }

    void Reset(int) {
        output["DVR1:"].push_back("open");
        if (Refuses(kResetOpen, "Reset_DVR, CreateFile()"))
            return;
        output["DVR1:"].push_back("0881 02");
        if (!Refuses(kResetRequest, "Reset_DVR, DeviceIoControl()"))
            Sleep(2s);
    }

    // Tries at once, and then so often from 12 seconds after the unit's start on. A pause comes
    // after a late success.
    void StartVideo(int) {
        constexpr int kMostAttempts = 121;
        Line("+++Mstar_C4_Scaler_Init");
        CloseScaler();
        if (OpenScaler())
            return ShowVideo();
        Wait(100ms, [this, left = kMostAttempts]() mutable {
            if (scaler_open_) {
                ShowVideo();
                return true;
            }
            if (now_ / 1ms <= 12000 || OpenScaler() || --left > 0)
                return false;
            const unsigned error = world.answers[kScalerOpen];
            Failure("Mstar_C4_Scaler_Init, CreateFile() fail!!!, ErroCode", error, kScaler);
            CloseScaler();
            Line("---Mstar_C4_Scaler_Init");
            Failure("CMainFrame::OnTimer, Mstar_C4_Scaler_Init() fail!!!, ErroCode", error,
                    "MainFrm");
            return true;
        });
    }
    void AwaitCardReport(int) {
        Poll(40, [this] { return card_report_; });
    }
    void AwaitPercent(int) {
        Poll(20, [this] { return percent_ != 0; });
    }
    void AwaitReboot(int) {
        Poll(99, [this] { return running_state_ != 3; });
    }
    void Pause(int) { Sleep(1s); }

    // The window's thread.

    // `over` is asked after `first`, and then every 100 ms.
    void Wait(Time first, std::function<bool()> over) {
        stack_.back().wake = now_ + first;
        stack_.back().over = std::move(over);
    }
    void Sleep(Time time) {
        Wait(time, [] { return true; });
    }
    // Asks at once, and so many times more.
    void Poll(int most, std::function<bool()> arrived) {
        if (!arrived())
            Wait(100ms, [arrived, most]() mutable { return arrived() || --most == 0; });
    }

    void RunThread() {
        while (!closed_) {
            const bool in_loop = stack_.empty() || (stack_.back().at_notice && !notice_ended_);
            if (in_loop ? !DispatchNext() : !Continue())
                return;
        }
    }

    // Ends the innermost rule's wait, or executes its next operation; false while it waits.
    bool Continue() {
        Activation& running = stack_.back();
        if (running.over) {
            if (now_ < running.wake)
                return false;
            running.wake = now_ + 100ms;
            if (running.over())
                running.over = nullptr;
        } else if (running.next < running.ops->size()) {
            const Op& op = (*running.ops)[running.next++];
            (this->*op.act)(op.value);
        } else {
            stack_.pop_back();
        }
        return true;
    }

    void Take(Trigger trigger, unsigned id) {
        const auto fits = [&](const Rule& rule) {
            return rule.trigger == trigger && (rule.id == kAnyId || rule.id == id) &&
                   (rule.step == kAnyStep || rule.step == step_) &&
                   (!rule.guard || (this->*rule.guard)());
        };
        const Rule& rule = *std::ranges::find_if(Rules(), fits);
        if (!receiving_)
            return stack_.push_back({&rule.ops});
        // The receive thread never waits.
        for (const Op& op : rule.ops)
            (this->*op.act)(op.value);
    }

    // The next message, in the order of the API: posted messages, touches, paintings, timers.
    // Paintings that another thread requested come first, in turn with the others.
    bool DispatchNext() {
        if (!others_have_turn_ && PaintNext(true)) {
            others_have_turn_ = true;
            return true;
        }
        if (DispatchInput() || PaintNext(false) || DispatchTimer()) {
            others_have_turn_ = false;
            return true;
        }
        return PaintNext(true);
    }

    bool DispatchInput() {
        if (!posted_.empty()) {
            const Posted posted = posted_.front();
            posted_.pop_front();
            Dispatch(posted);
            return true;
        }
        if (touches_.empty())
            return false;
        const TouchInput touch = touches_.front();
        touches_.pop_front();
        DispatchTouch(touch);
        return true;
    }

    bool DispatchTimer() {
        const auto due = std::ranges::min_element(timers_, {}, &TimerState::due);
        if (due == timers_.end() || due->due > now_)
            return false;
        due->due += ((now_ - due->due) / due->period + 1) * due->period;
        fired_ = due->id;
        Take(Trigger::kTimer, static_cast<unsigned>(fired_));
        return true;
    }

    bool PaintNext(bool requested) {
        for (Window* const window : {&notice_, &main_}) {
            if (window->exists && window->invalid && window->requested == requested) {
                Paint(*window);
                return true;
            }
        }
        return false;
    }

    void Dispatch(const Posted& posted) {
        if (posted.window == &notice_)
            return DispatchToNotice(posted);
        const auto id = static_cast<unsigned>(posted.wparam);
        switch (posted.message) {
            case kCommandMessage:
                return Take(Trigger::kCommand, id);
            case kTimerMessage:
                fired_ = posted.wparam;
                return Take(Trigger::kTimer, id);
            case kPowerMessage:
                return OnPower(posted.wparam, posted.lparam);
            case kCloseMessage:
                return Close();
            case kMenuMessage:
                if (id == 0xE141)
                    Post(kCloseMessage);
                return;
            default:
                return;
        }
    }

    void DispatchToNotice(const Posted& posted) {
        if (posted.message == kCommandMessage)
            return OnNoticeCommand(static_cast<unsigned>(posted.wparam));
        if (posted.message == kTimerMessage) {
            Line("\tCNotify::OnTimer");
            PostToNotice(kCloseMessage, 0);
        } else if (posted.message == kCloseMessage) {
            Line("\tCNotify::OnClose");
            notice_ended_ = true;
        }
    }

    void DispatchTouch(const TouchInput& touch) {
        const bool at_notice = notice_.exists;
        const auto log = [&] {
            if (at_notice)
                Line(Text("\tCNotify::OnBtn%s, (x, y) = (%d, %d)", touch.down ? "Down" : "Up",
                          touch.x, touch.y));
        };
        log();
        const int last = at_notice ? kAllControls : kWizardControls;
        for (int control = at_notice ? kWizardControls : 0; control < last; ++control)
            if (TakeTouch(touch, control))
                return;
        log();
    }

    bool TakeTouch(const TouchInput& touch, int control) {
        ControlState& state = controls_[static_cast<std::size_t>(control)];
        const ControlRow& row = Controls()[control];
        const bool inside = touch.x >= row.left && touch.x < row.right && touch.y >= row.top &&
                            touch.y < row.bottom;
        if (!state.visible || state.pressed == touch.down || (touch.down && !inside))
            return false;
        state.pressed = touch.down;
        if (row.id != 0)
            Redraw(control);
        if (touch.down || !inside)
            return touch.down;
        if (control >= kWizardControls)
            OnNoticeCommand(row.id);
        else if (row.id != 0)
            Take(Trigger::kCommand, row.id);
        return row.id != 0;
    }

    void OnNoticeCommand(unsigned id) {
        Line(Text("\tCNotify::OnXCommand, wParam:%u", id));
        if (id != kOkId)
            return;
        Line("\tCNotify::OnXCommand, IDC_BTN_OK");
        PostToNotice(kCloseMessage, 0);
    }

    void OnPower(std::uint64_t wparam, std::uint64_t lparam) {
        ac_line_ = static_cast<std::uint8_t>(wparam & 0xFF);
        Line(Text("\t''MSG_POWER_STATUS''( %08X, %08X ) Received.", static_cast<unsigned>(wparam),
                  static_cast<unsigned>(lparam)));
        if (ac_line_ <= 1)
            Line(Text("\tCMainFrame::OnPowerStatus, AC_LINE_%s",
                      ac_line_ == 1 ? "ONLINE" : "OFFLINE"));
        Take(Trigger::kPower, ac_line_);
    }

    void Close() {
        closed_ = true;
        if (world.has_link)
            Line("---ThreadProc_COM_Rx");
        Scale("ChangeDisplayWinddow", "800120B0 01 00 00 00 ->4");
        SetAlphaAndKey("80012078 00 00 00 00 00 00 00 00 ->4");
        CloseScaler();
        for (int times = 0; times < 2; ++times) {
            Line("+++CPowerDetector::DeInit");
            Line("---CPowerDetector::DeInit");
        }
        Line("---CPowerDetector::ThreadProc_PowerCommonCtrl");
    }

    // The receive thread.
    void OnReport(const Report& report) {
        for (const std::string& line : HandlerLines(report, true))
            Line(line);
        const bool ack = report.type == 0x20;
        if (!ack && report.type != 0x80)
            return;
        const std::size_t length = report.payload.size();
        switch (report.command & 0x7FFF) {
            case 0x10:
                if ((report.query() || !ack) && length != 0)
                    OnRunningState(report.byte(0));
                break;
            case 0x26:
                if (report.query() || !ack)
                    OnCard(report.byte(0), report.byte(length == 2 ? 1 : 2));
                break;
            case 0x2E:
                if (ack) {
                    for (std::size_t at = 0; at < 7; ++at)
                        version_[at] =
                            length < 17 ? "0.01.00"[at] : static_cast<char>(report.byte(10 + at));
                } else {
                    percent_ = report.byte(0);
                    if (length >= 2)
                        image_version_ = report.byte(1);
                }
                main_.invalid = true;
                break;
            default:
                break;
        }
    }

    void OnRunningState(unsigned state) {
        Send(0x802E);
        Send(0x8026);
        constexpr const char* kStates[] = {"INITIALIZING", "INIT_OK", "NORMAL", "REBOOTTING",
                                           "SHUTDOWNING"};
        const std::string begin = Text("\tCMainFrame::DVR_RunningState, %u, ", state);
        if (state >= std::size(kStates))
            return Line(begin + "default!!!");
        SetRunningState(static_cast<int>(state));
        const std::string step = state == 2 ? Text("%d, ", step_) : "";
        Line(begin + step + "DVR_RUNNING_STATE_" + kStates[state]);
        Take(Trigger::kRunningState, state);
    }

    void OnCard(unsigned status, unsigned percent) {
        Send(0x802E);
        if (ac_line_ == 0)
            return;
        card_report_ = true;
        // clang-format off
        constexpr const char* kCards[] = {
            "PLUG_OUT", "PLUG_IN", "BROKEN", "FORMATING", "SPACE_FULL_NORMAL_FILE",
            "SPACE_FULL_EVENT_FILE", "SPACE_FULL_BOTH_FILE"};
        // clang-format on
        const std::string begin = Text("\tCMainFrame::StorageCardStatus, Percent:%u, ", percent);
        if (status >= std::size(kCards))
            return Line(begin + "default!!!");
        if (status <= 1)
            card_ = static_cast<std::uint8_t>(status);
        Line(begin + "DVR_STORAGE_CARD_" + kCards[status]);
        Take(Trigger::kCard, status);
    }

    Time reading_since_;
    std::vector<Activation> stack_;
    std::deque<TouchInput> touches_;
    bool others_have_turn_ = false;  // after a requested painting
    FrameFinder finder_;
};

}  // namespace tests::model
