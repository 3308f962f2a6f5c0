#include "tests/model/wizard_model.h"

#include <algorithm>

#include "tests/model/text.h"

namespace tests::model {

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
    window.invalid = window.asked = false;
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

// One control, straight onto its window.
void WizardModel::Redraw(int control) {
    const ControlState& state = controls_[static_cast<std::size_t>(control)];
    Window& window = control < kWizardControls ? main_ : notice_;
    window.drawn[control] = {state.text, state.color};
    if (control == kClose)
        window.close_place = state.pressed ? 'x' : 'X';
}

}  // namespace tests::model
