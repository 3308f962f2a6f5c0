#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "tests/model/link_model.h"
#include "tests/model/wizard_tables.h"

namespace tests::model {

using namespace std::chrono_literals;
using Time = std::chrono::microseconds;

// What drivers answer: 0, or the error with which they refuse.
enum Answer { kResetOpen, kResetRequest, kScalerOpen, kScalerRequest, kHal, kAnswers };

// The wizard's environment.
struct World {
    std::array<unsigned, kAnswers> answers{};
    bool has_link = true;  // "COM9:"
    std::uint8_t ac_line = 1;
};

// Window messages. The power message stands for the registered one.
enum Message : unsigned {
    kCloseMessage = 0x10,
    kMenuMessage = 0x111,
    kTimerMessage = 0x113,
    kCommandMessage = 2024,
    kPowerMessage = 0xC000
};

// What is compared: the lines of each channel since the last comparison, as "log" or "frames".
using Output = std::map<std::string, std::vector<std::string>>;

// The wizard's state as text, without its screen.
inline std::string StateText(int step, int percent, int image_version, int running_state,
                             const std::string& dvr_version,
                             const std::map<std::uint64_t, Time>& timers, bool notice_up) {
    std::string text = Text(
        "step %d, percent %d, image version %d, running state %d, DVR version '%s'%s, timers", step,
        percent, image_version, running_state, dvr_version.c_str(), notice_up ? ", notice up" : "");
    for (const auto& [id, due] : timers)
        text += " " + std::to_string(id) + " at " + std::to_string(due.count());
    return text;
}

// The texts and their colours as they were drawn, by control.
using Drawn = std::map<int, std::pair<std::wstring, unsigned>>;

// What the wizard knows and shows, and the operations on it that take no time.
class WizardState {
  public:
    WizardState(const World& environment, Time start)
        : world(environment), now_(start), ac_line_(environment.ac_line) {
        for (const ControlRow& row : Controls())
            controls_.push_back({row.visible, false, row.text, row.color});
        main_.exists = main_.invalid = true;
    }

    World world;
    Output output;

    Time now() const { return now_; }

    // Events.
    void Post(unsigned message, std::uint64_t wparam = 0, std::uint64_t lparam = 0) {
        posted_.push_back({&main_, message, wparam, lparam});
    }

    void PostToNotice(unsigned message, std::uint64_t wparam) {
        if (notice_.exists)
            posted_.push_back({&notice_, message, wparam, 0});
    }

    void PostToAll(std::uint64_t wparam, std::uint64_t lparam) {
        PostToNotice(kPowerMessage, wparam);
        Post(kPowerMessage, wparam, lparam);
    }

    void SupplyUnreadable() {
        Failure(
            "CPowerDetector::ThreadProc_PowerDetector, GetSystemPowerStatusEx2() fail!!!, "
            "ErrorCode",
            31, "CPowerDetector");
    }
    void Invalidate() { main_.invalid = true; }
    void SetPercent(int percent) { percent_ = static_cast<std::uint8_t>(percent); }

    std::string State() const {
        std::map<std::uint64_t, Time> timers;
        for (const TimerState& timer : timers_)
            timers[timer.id] = timer.due;
        return StateText(step_, percent_, image_version_, running_state_, version_.data(), timers,
                         notice_.exists);
    }
    const Drawn& drawn() const { return (notice_.exists ? notice_ : main_).drawn; }
    // At the place of the close button: X, pressed x, or the background, black b or the key colour
    // k.
    char close_place() const { return main_.close_place; }
    int step() const { return step_; }
    bool closed() const { return closed_; }
    bool ac_offline() const { return ac_line_ == 0; }
    bool notice_up() const { return notice_.exists; }
    bool visible(Control control) const { return controls_[control].visible; }

  protected:
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
        Drawn drawn;
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

    // The guards and operations of the rules.
    bool CardIsOut() const { return card_ == 0; }
    bool CardIsIn() const { return card_ == 1; }
    bool HasPercent() const { return percent_ != 0; }
    bool IsAt100Percent() const { return percent_ == 100; }
    bool WasOffline() const { return was_offline_; }
    void ToStep(int step) { step_ = step; }
    void ToStepIfImage(int step) {
        if (percent_ == 0 && image_version_ != 0)
            ToStep(step);
    }
    void ForgetVersion(int = 0) { version_ = {}; }
    void ForgetCardReport(int) { card_report_ = false; }
    void SetRunningState(int state) { running_state_ = state; }
    void Show(int control) { controls_[control].visible = true; }
    void Hide(int control) { controls_[control].visible = false; }
    void HideThree(int = 0) {
        for (const Control control : {kNext, kUpdate, kSuspend})
            Hide(control);
    }

    void ShowOnly(int control) {
        HideThree();
        Show(control);
    }

    void GoOffline(int = 0) {
        was_offline_ = true;
        HideThree();
        Apply(Screen::kOffline);
    }
    void GoOnline(int) { was_offline_ = false; }
    // The receive thread only requests the painting.
    void Repaint(int = 0) {
        main_.invalid = true;
        if (receiving_)
            main_.requested = true;
        else
            Paint(main_);
    }
    void Arm100(int timer) { Arm(timer, 100ms); }
    void Arm2000(int timer) { Arm(timer, 2s); }
    void KillFired(int) { Kill(fired_); }
    void LogReset(int) { Line("\tCMainFrame::OnXCommand, Reset"); }
    void Send(int command) {
        if (world.has_link)
            output["frames"].push_back(Text("%04X", command));
        else
            Failure("UART_SendCommand, WriteFile() fail!!!, ErrorCode", 6, "UART");
    }

    void SuspendSystem(int) {
        output["HAL codes"].push_back("01012020");
        if (Refuses(kHal, "OnXCommand, KernelIoControl( IOCTL_HAL_ENTER_SUSPEND_MODE )"))
            return;
        Line("\tCMainFrame::OnXCommand, SystemSuspend");
        output["power states"].push_back("00020000");
    }
    void PostClose(int) { Post(kCloseMessage); }

    // The scaler.
    bool OpenScaler() {
        output["SCA0:"].push_back("open");
        scaler_open_ = world.answers[kScalerOpen] == 0;
        return scaler_open_;
    }

    void CloseScaler() {
        scaler_open_ = false;
        for (const char* line : {"+++Mstar_C4_Scaler_DeInit", "+++Mstar_C4_Scaler_FreeMemory",
                                 "---Mstar_C4_Scaler_FreeMemory", "---Mstar_C4_Scaler_DeInit"})
            Line(line);
    }

    void Scale(const std::string& function, const char* request,
               const char* failure = "DeviceIoControl()") {
        const unsigned error = world.answers[kScalerRequest];
        const std::string line = "Mstar_C4_Scaler_" + function + ", ";
        if (!scaler_open_)
            return Failure(line + "Invalid Arguments!!!, ErroCode", 0, kScaler);
        output["SCA0:"].push_back(request);
        if (error != 0)
            Failure(line + failure + " fail!!!, ErroCode", error, kScaler);
    }

    void SetAlphaAndKey(const char* key) {
        Scale("SetAlpha", "80012070 3F 00 00 00 ->4", "OSKA set alpha");
        Scale("ColorKey", key, "OSKA Scaler set ColorKey");
    }

    void ShowVideo() {
        constexpr char kKey[] = "80012078 00 10 00 00 01 00 00 00 ->4";
        Line("---Mstar_C4_Scaler_Init");
        Scale("ChangeDisplayWinddow", "800120B0 00 00 00 00 ->4");
        Scale("SW2GOP", "8001206C 01 00 00 00 ->4");
        Scale("Sw2Scaler", "80012068 01 00 00 00 ->4", "OSKA sw to scaler");
        SetAlphaAndKey(kKey);
        Line("+++Mstar_C4_Scaler_SetWindow");
        // 0; source 10, 49, 695, 375; input 720 x 480; display 0, 0, 800, 480; 0, 1; padding
        Scale(
            "SetWindow",
            "1B001B 00 00 00 00 0A 00 31 00 B7 02 77 01 D0 02 E0 01 00 00 00 00 20 03 E0 01 00 01 "
            "00 00");
        Line("---Mstar_C4_Scaler_SetWindow");
        SetAlphaAndKey(kKey);
    }

    // Painting.
    void Paint(Window& window) {
        window.invalid = window.requested = false;
        if (&window == &main_)
            return PaintWizard();
        Line(Text("\tCNotify::OnPaint, nStep:%d ", step_));
        if (step_ > 0)
            Apply(Screen::kNoticeAfterUpdate);
        notice_.drawn.clear();
        for (int control = kWizardControls; control < kAllControls; ++control)
            Redraw(control);
    }

    void PaintWizard() {
        if (step_ != kUpdating && step_ != kWait && percent_ != 0) {
            Arm100(kVideoTimer);
            controls_[kNext].text = L"Next";
            ToStep(kUpdating);
            Hide(kNext);
        }
        const char background = step_ == kPowerOn ? 'b' : 'k';
        if (ac_line_ != 0)
            PaintStep();
        main_.drawn.clear();
        for (int control = 0; control < kWizardControls; ++control)
            if (controls_[control].visible)
                Redraw(control);
        if (!controls_[kClose].visible)
            main_.close_place = background;
    }

    void PaintStep() {
        std::wstring& dvr = controls_[kDvrLine].text;
        dvr = L"DVR :";
        if (step_ == kCheckCard || step_ == kInsertCard || step_ == kResult || step_ == kReopen) {
            const std::string known = version_.data();
            dvr +=
                VersionKnown() ? L" V" + std::wstring(known.begin(), known.end()) : L" 読み込み中";
        } else if (step_ != kRemoveCard) {
            ForgetVersion();
        }
        switch (step_) {
            case kPowerOn:
                return Apply(Screen::kPowerOn);
            case kCheckCard:
                return Apply(card_report_ ? Screen::kCheckCard : Screen::kNoCardReport);
            case kInsertCard:
                return Apply(Screen::kInsertCard);
            case kUpdating:
                if (percent_ == 0) {
                    Apply(Screen::kImageMissing);
                    ToStep(kInsertCard);
                    return Repaint();
                }
                Apply(Screen::kUpdating);
                controls_[kLine2].text = L"Update Percent : " + std::to_wstring(percent_) + L"%";
                if (percent_ >= 100) {
                    ToStep(kWait);
                    main_.invalid = true;
                }
                return;
            case kWait:
                Apply(Screen::kWait);
                if (percent_ >= 100) {
                    Arm(kNotifyTimer, 3s);
                    percent_ = 0;
                }
                return;
            case kRemoveCard:
                Apply(Screen::kRemoveCard);
                return Arm(kNotifyTimer, 1s);
            case kResult:
                Apply(Screen::kResult);
                return Apply(VersionKnown() ? Screen::kSuccess : Screen::kFailure);
            default:
                return Apply(Screen::kReopen);
        }
    }

    // Draws one control onto its window.
    void Redraw(int control) {
        const ControlState& state = controls_[static_cast<std::size_t>(control)];
        Window& window = control < kWizardControls ? main_ : notice_;
        window.drawn[control] = {state.text, state.color};
        if (control == kClose)
            window.close_place = state.pressed ? 'x' : 'X';
    }

    void Apply(Screen screen) {
        const ScreenRow& row = *std::ranges::find(Screens(), screen, &ScreenRow::screen);
        for (std::size_t line = 0; line < row.lines.size(); ++line)
            if (row.lines[line])
                controls_[kLine1 + line].text = row.lines[line];
        for (const Setting& setting : row.others) {
            ControlState& control = controls_[setting.control];
            if (setting.text)
                control.text = setting.text;
            control.color = setting.color.value_or(control.color);
            control.visible = setting.visible.value_or(control.visible);
        }
    }
    void Arm(int id, Time period) {
        const auto number = static_cast<std::uint64_t>(id);
        Kill(number);
        timers_.push_back({number, period, now_ + period});
    }

    void Kill(std::uint64_t id) {
        std::erase_if(timers_, [id](const TimerState& timer) { return timer.id == id; });
    }
    bool VersionKnown() const { return version_[1] != 0 || version_[4] != 0; }
    void Line(const std::string& line) { output["log"].push_back(line); }
    void Failure(const std::string& what, unsigned error, const char* source) {
        Line("\t" + what + Text("(%u), %s.cpp(#)", error, source));
    }
    // Whether the driver refuses that call of the main frame, which logs it.
    bool Refuses(Answer answer, const std::string& call) {
        const unsigned error = world.answers[answer];
        if (error != 0)
            Failure("CMainFrame::" + call + " fail!!!, ErrorCode", error, "MainFrm");
        return error != 0;
    }

    static constexpr char kScaler[] = "MStar_C4_Scaler";

    Time now_;
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
    std::deque<Posted> posted_;
    std::vector<TimerState> timers_;
    std::uint64_t fired_ = 0;  // the timer that fired last
};

}  // namespace tests::model
