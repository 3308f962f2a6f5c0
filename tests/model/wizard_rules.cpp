#include "tests/model/wizard_model.h"

namespace tests::model {

// What each event does at each step.
std::span<const WizardModel::Rule> WizardModel::Rules() {
    using M = WizardModel;
    using T = Trigger;
    // clang-format off
    static const Rule rules[] = {
        {T::kCommand, kNextId, kPowerOn, {},
         {{&M::ShowNotice}, {&M::SetPercent, 0}, {&M::HideThree}, {&M::ForgetCardReport}, {&M::ForgetVersion}, {&M::Reset}, {&M::Arm100, kVideoTimer},
          {&M::AwaitCardReport}, {&M::ToStep, kCheckCard}, {&M::Repaint}, {&M::Send, 0x802E}, {&M::Send, 0x8026}}},
        {T::kCommand, kNextId, kCheckCard, {},
         {{&M::SetPercent, 0}, {&M::ToStep, kInsertCard}, {&M::HideThree}, {&M::Repaint}, {&M::Reset}, {&M::Arm100, kVideoTimer}}},
        {T::kCommand, kNextId, kRemoveCard, {},
         {{&M::SetPercent, 0}, {&M::ForgetVersion}, {&M::HideThree}, {&M::Reset}, {&M::Arm100, kVideoTimer}, {&M::Repaint}}},
        {T::kCommand, kNextId, kAnyStep, {}, {}},
        {T::kCommand, kUpdateId, kCheckCard, &M::CardIsOut,
         {{&M::ToStep, kInsertCard}, {&M::HideThree}, {&M::Repaint}, {&M::Reset}, {&M::Arm100, kVideoTimer}}},
        {T::kCommand, kUpdateId, kCheckCard, {}, {}},
        {T::kCommand, kUpdateId, kInsertCard, &M::HasPercent, {{&M::HideThree}, {&M::Repaint}}},
        {T::kCommand, kUpdateId, kInsertCard, {},
         {{&M::ToStep, kUpdating}, {&M::HideThree}, {&M::LogReset}, {&M::Reset}, {&M::AwaitPercent}, {&M::ToStepIfImage, kResult}, {&M::Repaint}}},
        {T::kCommand, kUpdateId, kUpdating, {}, {}},
        {T::kCommand, kUpdateId, kWait, {}, {}},
        {T::kCommand, kUpdateId, kRemoveCard, {}, {}},
        {T::kCommand, kUpdateId, kResult, &M::IsAt100Percent,
         {{&M::Hide, kSuspend}, {&M::Hide, kUpdate}, {&M::ToStep, kReopen}, {&M::Repaint}, {&M::Send, 0x001C}, {&M::SetRunningState, 3},
          {&M::ForgetVersion}, {&M::Repaint}, {&M::AwaitReboot}, {&M::Pause}, {&M::Send, 0x802E}}},
        {T::kCommand, kUpdateId, kResult, {}, {{&M::Hide, kSuspend}, {&M::Hide, kUpdate}, {&M::Repaint}}},
        {T::kCommand, kUpdateId, kReopen, {}, {{&M::Hide, kSuspend}, {&M::Hide, kUpdate}, {&M::Repaint}}},
        {T::kCommand, kUpdateId, kAnyStep, {}, {{&M::HideThree}, {&M::Repaint}}},
        {T::kCommand, kSuspendId, kResult, {},
         {{&M::ForgetVersion}, {&M::ToStep, kReopen}, {&M::HideThree}, {&M::Repaint}, {&M::SuspendSystem}}},
        {T::kCommand, kSuspendId, kAnyStep, {}, {{&M::HideThree}, {&M::Repaint}}},
        {T::kCommand, kCloseId, kAnyStep, {}, {{&M::PostClose}}},
        {T::kCommand, kAnyId, kAnyStep, {}, {}},

        {T::kTimer, kNotifyTimer, kWait, {},
         {{&M::KillFired}, {&M::ShowNotice}, {&M::ToStep, kRemoveCard}, {&M::ShowOnly, kNext}, {&M::Repaint}}},
        {T::kTimer, kCardOutTimer, kCheckCard, &M::CardIsOut, {{&M::KillFired}, {&M::ShowOnly, kNext}, {&M::Repaint}}},
        {T::kTimer, kCardOutTimer, kCheckCard, {}, {}},
        {T::kTimer, kCardInTimer, kInsertCard, &M::CardIsIn, {{&M::KillFired}, {&M::ShowOnly, kUpdate}, {&M::Repaint}}},
        {T::kTimer, kCardInTimer, kInsertCard, {}, {}},
        {T::kTimer, kVideoTimer, kCheckCard, &M::CardIsOut, {{&M::KillFired}, {&M::HideThree}, {&M::Repaint}, {&M::StartVideo}}},
        {T::kTimer, kVideoTimer, kCheckCard, {}, {{&M::KillFired}}},
        {T::kTimer, kVideoTimer, kUpdating, {}, {{&M::KillFired}}},
        {T::kTimer, kVideoTimer, kWait, {}, {{&M::KillFired}}},
        {T::kTimer, kVideoTimer, kAnyStep, {}, {{&M::KillFired}, {&M::HideThree}, {&M::Repaint}, {&M::StartVideo}}},
        {T::kTimer, kRepaintTimer, kAnyStep, {}, {{&M::KillFired}, {&M::Repaint}}},
        {T::kTimer, kAnyId, kAnyStep, {}, {{&M::KillFired}}},

        {T::kRunningState, 2, kCheckCard, {}, {{&M::Repaint}}},
        {T::kRunningState, 2, kInsertCard, {}, {{&M::Arm100, kCardInTimer}}},
        {T::kRunningState, 2, kRemoveCard, {},
         {{&M::ToStep, kResult}, {&M::Hide, kNext}, {&M::Hide, kUpdate}, {&M::Arm2000, kRepaintTimer}}},
        {T::kRunningState, kAnyId, kAnyStep, {}, {}},

        {T::kCard, 0, kCheckCard, {}, {{&M::ShowOnly, kNext}, {&M::Repaint}}},
        {T::kCard, 0, kInsertCard, {}, {{&M::HideThree}, {&M::Repaint}}},
        {T::kCard, 0, kWait, {}, {{&M::ShowOnly, kNext}, {&M::Repaint}}},
        {T::kCard, 0, kReopen, {}, {{&M::Arm100, kVideoTimer}}},
        {T::kCard, 1, kCheckCard, {}, {{&M::Hide, kUpdate}, {&M::Hide, kNext}, {&M::Repaint}, {&M::Arm100, kCardOutTimer}}},
        {T::kCard, 1, kInsertCard, {}, {{&M::ShowOnly, kUpdate}, {&M::Repaint}}},
        {T::kCard, 1, kReopen, {}, {{&M::Arm100, kVideoTimer}}},
        {T::kCard, kAnyId, kAnyStep, {}, {}},

        {T::kPower, 0, kAnyStep, {}, {{&M::GoOffline}, {&M::Repaint}}},
        {T::kPower, 1, kAnyStep, &M::WasOffline,
         {{&M::ToStep, kPowerOn}, {&M::GoOnline}, {&M::SetPercent, 0}, {&M::ForgetVersion}, {&M::Show, kNext}, {&M::Hide, kClose},
          {&M::Hide, kUpdate}, {&M::Repaint}}},
        {T::kPower, kAnyId, kAnyStep, {}, {}},
    };
    // clang-format on
    return rules;
}

}  // namespace tests::model
