// The window's messages and its painting.
#include <algorithm>

#include "tests/model/wizard_model.h"

namespace tests::model {
namespace {

bool Hits(int control, int x, int y) {
    const ControlRow& row = Controls()[control];
    return x >= row.left && x < row.right && y >= row.top && y < row.bottom;
}

bool IsButton(int control) {
    return Controls()[control].id != 0;
}

}  // namespace

// The next message, in the order of the API: posted messages, touches, paintings, timers. Paintings
// that another thread requested come first, in turn with the others.
bool WizardModel::DispatchNext() {
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

bool WizardModel::DispatchInput() {
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

bool WizardModel::DispatchTimer() {
    const auto due = std::ranges::min_element(timers_, {}, &TimerState::due);
    if (due == timers_.end() || due->due > now_)
        return false;
    due->due += ((now_ - due->due) / due->period + 1) * due->period;
    fired_ = due->id;
    Take(Trigger::kTimer, static_cast<unsigned>(fired_));
    return true;
}

bool WizardModel::PaintNext(bool requested) {
    for (Window* const window : {&notice_, &main_}) {
        if (window->exists && window->invalid && window->requested == requested) {
            Paint(*window);
            return true;
        }
    }
    return false;
}

void WizardModel::Dispatch(const Posted& posted) {
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

void WizardModel::DispatchToNotice(const Posted& posted) {
    switch (posted.message) {
        case kCommandMessage:
            return OnNoticeCommand(static_cast<unsigned>(posted.wparam));
        case kTimerMessage:
            Line("\tCNotify::OnTimer");
            return PostToNotice(kCloseMessage, 0);
        case kCloseMessage:
            Line("\tCNotify::OnClose");
            notice_ended_ = true;
            return;
        default:
            return;
    }
}

void WizardModel::OnNoticeCommand(unsigned id) {
    Line(Text("\tCNotify::OnXCommand, wParam:%u", id));
    if (id != kOkId)
        return;
    Line("\tCNotify::OnXCommand, IDC_BTN_OK");
    PostToNotice(kCloseMessage, 0);
}

void WizardModel::DispatchTouch(const TouchInput& touch) {
    const bool at_notice = notice_.exists;
    const std::string line =
        Text("\tCNotify::OnBtn%s, (x, y) = (%d, %d)", touch.down ? "Down" : "Up", touch.x, touch.y);
    if (at_notice)
        Line(line);
    const int first = at_notice ? kWizardControls : 0;
    const int last = at_notice ? kAllControls : kWizardControls;
    for (int control = first; control < last; ++control)
        if (TakeTouch(touch, control))
            return;
    if (at_notice)
        Line(line);
}

bool WizardModel::TakeTouch(const TouchInput& touch, int control) {
    ControlState& state = controls_[static_cast<std::size_t>(control)];
    if (!state.visible)
        return false;
    const bool inside = Hits(control, touch.x, touch.y);
    if (touch.down) {
        if (!inside || state.pressed)
            return false;
        state.pressed = true;
        if (IsButton(control))
            Redraw(control);
        return true;
    }
    if (!state.pressed)
        return false;
    state.pressed = false;
    if (IsButton(control))
        Redraw(control);
    if (!inside)
        return false;
    const unsigned id = Controls()[control].id;
    if (control >= kWizardControls)
        OnNoticeCommand(id);
    else if (IsButton(control))
        Take(Trigger::kCommand, id);
    return IsButton(control);
}

void WizardModel::OnPower(std::uint64_t wparam, std::uint64_t lparam) {
    ac_line_ = static_cast<std::uint8_t>(wparam & 0xFF);
    Line(Text("\t''MSG_POWER_STATUS''( %08X, %08X ) Received.", static_cast<unsigned>(wparam),
              static_cast<unsigned>(lparam)));
    if (ac_line_ <= 1)
        Line(Text("\tCMainFrame::OnPowerStatus, AC_LINE_%s", ac_line_ == 1 ? "ONLINE" : "OFFLINE"));
    Take(Trigger::kPower, ac_line_);
}

void WizardModel::Apply(Screen screen) {
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

void WizardModel::Paint(Window& window) {
    window.invalid = window.requested = false;
    if (&window == &notice_)
        PaintNotice();
    else
        PaintWizard();
}

void WizardModel::PaintNotice() {
    Line(Text("\tCNotify::OnPaint, nStep:%d ", step_));
    if (step_ > 0)
        Apply(Screen::kNoticeAfterUpdate);
    notice_.drawn.clear();
    for (int control = kWizardControls; control < kAllControls; ++control)
        Redraw(control);
}

void WizardModel::PaintWizard() {
    if (step_ != kUpdating && step_ != kWait && percent_ != 0) {
        Arm(kVideoTimer, 100);
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

void WizardModel::PaintStep() {
    std::wstring& dvr = controls_[kDvrLine].text;
    dvr = L"DVR :";
    if (step_ == kCheckCard || step_ == kInsertCard || step_ == kResult || step_ == kReopen) {
        const std::string known = version_.data();
        dvr += VersionKnown() ? L" V" + std::wstring(known.begin(), known.end()) : L" 読み込み中";
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
                Arm(kNotifyTimer, 3000);
                percent_ = 0;
            }
            return;
        case kRemoveCard:
            Apply(Screen::kRemoveCard);
            return Arm(kNotifyTimer, 1000);
        case kResult:
            Apply(Screen::kResult);
            return Apply(VersionKnown() ? Screen::kSuccess : Screen::kFailure);
        default:
            return Apply(Screen::kReopen);
    }
}

// Draws one control onto its window.
void WizardModel::Redraw(int control) {
    const ControlState& state = controls_[static_cast<std::size_t>(control)];
    Window& window = control < kWizardControls ? main_ : notice_;
    window.drawn[control] = {state.text, state.color};
    if (control == kClose)
        window.close_place = state.pressed ? 'x' : 'X';
}

}  // namespace tests::model
