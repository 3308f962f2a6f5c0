#include "tests/model/wizard_model.h"

#include "tests/model/text.h"

namespace tests::model {

void WizardModel::Apply(Screen screen) {
    for (const Setting& setting : Settings()) {
        if (setting.screen != screen)
            continue;
        ControlState& control = controls_[setting.control];
        if (setting.what == Setting::What::kText)
            control.text = setting.text;
        else if (setting.what == Setting::What::kColor)
            control.color = setting.value;
        else
            control.visible = setting.value != 0;
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
        notice_.drawn[control] = {controls_[control].text, controls_[control].color};
}

void WizardModel::PaintWizard() {
    if (step_ != kUpdating && step_ != kWait && percent_ != 0) {
        Arm(kVideoTimer, 100);
        controls_[kNext].text = L"Next";
        ToStep(kUpdating);
        controls_[kNext].visible = false;
    }
    const char background = step_ == kPowerOn ? 'b' : 'k';
    if (ac_line_ != 0) {
        std::wstring& dvr = controls_[kDvrLine].text;
        dvr = L"DVR :";
        if (step_ == kCheckCard || step_ == kInsertCard || step_ == kResult || step_ == kReopen) {
            const std::string known = version();
            dvr = VersionKnown() ? L"DVR : V" + std::wstring(known.begin(), known.end())
                                 : L"DVR : 読み込み中";
        } else if (step_ != kRemoveCard) {
            version_ = {};
        }
        switch (step_) {
            case kPowerOn:
                Apply(Screen::kPowerOn);
                break;
            case kCheckCard:
                Apply(card_report_ ? Screen::kCheckCard : Screen::kNoCardReport);
                break;
            case kInsertCard:
                Apply(Screen::kInsertCard);
                break;
            case kUpdating:
                if (percent_ == 0) {
                    Apply(Screen::kImageMissing);
                    ToStep(kInsertCard);
                    Repaint();
                } else {
                    Apply(Screen::kUpdating);
                    controls_[kLine2].text =
                        L"Update Percent : " + std::to_wstring(percent_) + L"%";
                    if (percent_ >= 100) {
                        ToStep(kWait);
                        main_.invalid = true;
                    }
                }
                break;
            case kWait:
                Apply(Screen::kWait);
                if (percent_ >= 100) {
                    Arm(kNotifyTimer, 3000);
                    percent_ = 0;
                }
                break;
            case kRemoveCard:
                Apply(Screen::kRemoveCard);
                Arm(kNotifyTimer, 1000);
                break;
            case kResult:
                Apply(Screen::kResult);
                Apply(VersionKnown() ? Screen::kSuccess : Screen::kFailure);
                break;
            case kReopen:
                Apply(Screen::kReopen);
                break;
            default:
                break;
        }
    }
    main_.drawn.clear();
    for (int control = 0; control < kWizardControls; ++control)
        if (controls_[control].visible)
            main_.drawn[control] = {controls_[control].text, controls_[control].color};
    main_.close_place = background;
    if (controls_[kClose].visible)
        main_.close_place = controls_[kClose].pressed ? 'x' : 'X';
}

// The button alone, straight onto its window.
void WizardModel::Redraw(int control) {
    const ControlState& state = controls_[static_cast<std::size_t>(control)];
    Window& window = control < kWizardControls ? main_ : notice_;
    window.drawn[control] = {state.text, state.color};
    if (control == kClose)
        window.close_place = state.pressed ? 'x' : 'X';
}

}  // namespace tests::model
