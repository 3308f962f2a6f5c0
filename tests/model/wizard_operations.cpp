#include "tests/model/wizard_model.h"

#include <algorithm>

#include "tests/model/text.h"

namespace tests::model {
namespace {

using namespace std::chrono_literals;

}  // namespace

bool WizardModel::AtNotice() const {
    return !stack_.empty() && stack_.back().at < stack_.back().ops->size() &&
           (*stack_.back().ops)[stack_.back().at].what == Do::kShowNotice &&
           stack_.back().stage == 1;
}

void WizardModel::RunThread() {
    while (!closed_) {
        const bool in_loop = stack_.empty() || (AtNotice() && !notice_ended_);
        if (in_loop ? !DispatchNext() : !GoOn())
            return;
    }
}

// The innermost handler goes on as far as it can; false while it waits.
bool WizardModel::GoOn() {
    const std::size_t depth = stack_.size() - 1;
    if (stack_[depth].at == stack_[depth].ops->size()) {
        stack_.pop_back();
        return true;
    }
    const Op op = (*stack_[depth].ops)[stack_[depth].at];
    if (!Execute(stack_[depth], op))
        return stack_[depth].wake <= now_;
    ++stack_[depth].at;
    stack_[depth].stage = 0;
    return true;
}

void WizardModel::Take(Trigger trigger, unsigned id, std::uint64_t timer) {
    const auto fits = [&](const Rule& rule) {
        return rule.trigger == trigger && (rule.id == kAnyId || rule.id == id) &&
               (rule.step == kAnyStep || rule.step == step_) && Holds(rule.guard);
    };
    const auto rule = std::ranges::find_if(Rules(), fits);
    ++RulesTaken()[static_cast<std::size_t>(rule - Rules().begin())];
    Activation activation{&rule->ops, 0, timer, 0, {}};
    if (!receiving_) {
        stack_.push_back(activation);
        return;
    }
    for (const Op& op : rule->ops)
        Execute(activation, op);
}

bool WizardModel::Holds(Guard guard) const {
    switch (guard) {
        case Guard::kCardOut:
            return card_ == 0;
        case Guard::kCardIn:
            return card_ == 1;
        case Guard::kPercent:
            return percent_ != 0;
        case Guard::kPercent100:
            return percent_ == 100;
        case Guard::kWasOffline:
            return was_offline_;
        case Guard::kAlways:
            break;
    }
    return true;
}

bool WizardModel::Execute(Activation& running, const Op& op) {
    const auto number = static_cast<unsigned>(op.value);
    switch (op.what) {
        case Do::kShowNotice:
            return ShowNotice(running);
        case Do::kStep:
            ToStep(op.value);
            break;
        case Do::kStepIfImage:
            if (percent_ == 0 && bin_version_ != 0)
                ToStep(op.value);
            break;
        case Do::kNoPercent:
            percent_ = 0;
            break;
        case Do::kNoVersion:
            version_ = {};
            break;
        case Do::kNoCardReport:
            card_report_ = false;
            break;
        case Do::kRunningState:
            running_state_ = static_cast<std::uint8_t>(op.value);
            break;
        case Do::kShow:
        case Do::kHide:
            controls_[number].visible = op.what == Do::kShow;
            break;
        case Do::kHideThree:
            for (const Control control : {kNext, kUpdate, kSuspend})
                controls_[control].visible = false;
            break;
        case Do::kOffline:
            was_offline_ = true;
            Apply(Screen::kOffline);
            break;
        case Do::kOnline:
            was_offline_ = false;
            break;
        case Do::kRepaint:
            Repaint();
            break;
        case Do::kArm100:
            Arm(number, 100);
            break;
        case Do::kArm2000:
            Arm(number, 2000);
            break;
        case Do::kKill:
            Kill(running.timer);
            break;
        case Do::kLogReset:
            Line("\tCMainFrame::OnXCommand, Reset");
            break;
        case Do::kReset:
            return Reset(running);
        case Do::kVideo:
            return StartVideo(running);
        case Do::kSend:
            Send(number);
            break;
        case Do::kAwaitCardReport:
            return Poll(running, 40, card_report_);
        case Do::kAwaitPercent:
            return Poll(running, 20, percent_ != 0);
        case Do::kAwaitReboot:
            return Poll(running, 99, running_state_ != 3);
        case Do::kPause:
            return SleepFor(running, 1s);
        case Do::kSuspendSystem:
            SuspendSystem();
            break;
        case Do::kPostClose:
            Post(Message::kClose);
            break;
    }
    return true;
}

bool WizardModel::SleepFor(Activation& running, Time time) {
    if (running.stage == 0) {
        running.stage = 1;
        running.wake = now_ + time;
    }
    return now_ >= running.wake;
}

bool WizardModel::Poll(Activation& running, int most, bool arrived) {
    if (now_ < running.wake)
        return false;
    if (arrived || running.stage == most)
        return true;
    ++running.stage;
    running.wake = now_ + 100ms;
    return false;
}

bool WizardModel::Reset(Activation& running) {
    if (running.stage == 0) {
        ++reset_opens;
        if (world.reset_open != 0) {
            Failure("CMainFrame::Reset_DVR", "CreateFile() fail!!!", world.reset_open);
            return true;
        }
        reset_requests.emplace_back("0881 02");
        if (world.reset_request != 0) {
            Failure("CMainFrame::Reset_DVR", "DeviceIoControl() fail!!!", world.reset_request);
            return true;
        }
    }
    return SleepFor(running, 2s);
}

void WizardModel::SuspendSystem() {
    hal_codes.push_back(0x01012020);
    if (world.hal != 0) {
        Failure("CMainFrame::OnXCommand", "KernelIoControl( IOCTL_HAL_ENTER_SUSPEND_MODE ) fail!!!",
                world.hal);
        return;
    }
    Line("\tCMainFrame::OnXCommand, SystemSuspend");
    power_states.push_back(0x00020000);
}

void WizardModel::ToStep(int step) {
    ++Moves()[IndexOf(step_)][IndexOf(step)];
    step_ = step;
}

void WizardModel::Arm(std::uint64_t id, int milliseconds) {
    Kill(id);
    const Time period = std::chrono::milliseconds(milliseconds);
    timers_.push_back({id, period, now_ + period});
}

void WizardModel::Kill(std::uint64_t id) {
    std::erase_if(timers_, [id](const TimerState& timer) { return timer.id == id; });
}

// Another thread's paint comes next, but does not come now.
void WizardModel::Repaint() {
    main_.invalid = true;
    if (receiving_)
        main_.asked = true;
    else
        Paint(main_);
}

bool WizardModel::ShowNotice(Activation& running) {
    if (running.stage == 0) {
        if (notice_.exists)
            return true;
        running.stage = 1;
        Line("\tCNotify::OnInitDialog");
        notice_ = {};
        notice_.exists = notice_.invalid = true;
        notice_ended_ = false;
        for (int control = kWizardControls; control < kAllControls; ++control) {
            const ControlRow& row = Controls()[control];
            controls_[control] = {true, false, row.text, row.color};
        }
        return false;
    }
    if (!notice_ended_)
        return false;
    notice_ = {};
    std::erase_if(posted_, [this](const Posted& posted) { return posted.window == &notice_; });
    return true;
}

}  // namespace tests::model
