#include "tests/model/wizard_model.h"

#include <algorithm>

#include "tests/model/text.h"

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

bool WizardModel::DispatchNext() {
    Window* const windows[] = {&notice_, &main_};
    const auto to_paint = [&](bool asked) -> Window* {
        for (Window* const window : windows)
            if (window->exists && window->invalid && (!asked || window->asked))
                return window;
        return nullptr;
    };
    if (!rest_has_turn_) {
        if (Window* const window = to_paint(true)) {
            rest_has_turn_ = true;
            Paint(*window);
            return true;
        }
    }
    if (!posted_.empty()) {
        rest_has_turn_ = false;
        const Posted posted = posted_.front();
        posted_.pop_front();
        Dispatch(posted);
        return true;
    }
    if (!touches_.empty()) {
        rest_has_turn_ = false;
        const TouchInput touch = touches_.front();
        touches_.pop_front();
        DispatchTouch(touch);
        return true;
    }
    TimerState* due = nullptr;
    for (TimerState& timer : timers_)
        if (timer.due <= now_ && (!due || timer.due < due->due))
            due = &timer;
    if (due) {
        rest_has_turn_ = false;
        due->due += ((now_ - due->due) / due->period + 1) * due->period;
        Take(Trigger::kTimer, static_cast<unsigned>(due->id), due->id);
        return true;
    }
    Window* window = rest_has_turn_ ? to_paint(true) : nullptr;
    if (!window)
        window = to_paint(false);
    if (!window)
        return false;
    Paint(*window);
    return true;
}

void WizardModel::Dispatch(const Posted& posted) {
    const auto id = static_cast<unsigned>(posted.wparam);
    if (posted.window == &notice_) {
        switch (posted.message) {
            case Message::kCommand:
                OnNoticeCommand(id);
                break;
            case Message::kTimer:
                Line("\tCNotify::OnTimer");
                PostToNotice(Message::kClose, 0);
                break;
            case Message::kClose:
                Line("\tCNotify::OnClose");
                notice_ended_ = true;
                break;
            default:
                break;
        }
        return;
    }
    switch (posted.message) {
        case Message::kCommand:
            Take(Trigger::kCommand, id);
            break;
        case Message::kTimer:
            Take(Trigger::kTimer, id, posted.wparam);
            break;
        case Message::kPower:
            OnPower(posted.wparam, posted.lparam);
            break;
        case Message::kClose:
            Close();
            break;
        case Message::kExit:
            Post(Message::kClose);
            break;
        case Message::kOther:
            break;
    }
}

void WizardModel::OnNoticeCommand(unsigned id) {
    Line(Text("\tCNotify::OnXCommand, wParam:%u", id));
    if (id != kOkId)
        return;
    Line("\tCNotify::OnXCommand, IDC_BTN_OK");
    PostToNotice(Message::kClose, 0);
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

}  // namespace tests::model
