#include "tests/model/wizard_model.h"

#include <algorithm>

#include "tests/model/text.h"

namespace tests::model {
namespace {

using namespace std::chrono_literals;

}  // namespace

bool WizardModel::AtNotice() const {
    return !stack_.empty() && stack_.back().at < stack_.back().ops->size() &&
           (*stack_.back().ops)[stack_.back().at].wait == &WizardModel::ShowNotice &&
           stack_.back().stage == 1;
}

void WizardModel::RunThread() {
    while (!closed_) {
        const bool in_loop = stack_.empty() || (AtNotice() && !notice_ended_);
        if (in_loop ? !DispatchNext() : !GoOn())
            return;
    }
}

// The innermost rule goes on as far as it can; false while it waits.
bool WizardModel::GoOn() {
    Activation& running = stack_.back();
    if (running.at == running.ops->size()) {
        stack_.pop_back();
        return true;
    }
    const Op op = (*running.ops)[running.at];
    if (op.wait && !(this->*op.wait)(running))
        return running.wake <= now_;
    if (op.act)
        (this->*op.act)(op.value);
    ++running.at;
    running.stage = 0;
    return true;
}

void WizardModel::Take(Trigger trigger, unsigned id) {
    const auto fits = [&](const Rule& rule) {
        return rule.trigger == trigger && (rule.id == kAnyId || rule.id == id) &&
               (rule.step == kAnyStep || rule.step == step_) &&
               (!rule.guard || (this->*rule.guard)());
    };
    const Rule& rule = *std::ranges::find_if(Rules(), fits);
    rules_taken_.insert(&rule);
    if (!receiving_) {
        stack_.push_back({&rule.ops});
        return;
    }
    // What the receive thread does never waits.
    for (const Op& op : rule.ops)
        (this->*op.act)(op.value);
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
        output[kResetOpens] += 'o';
        if (world.reset_open != 0) {
            Failure("CMainFrame::Reset_DVR", "CreateFile() fail!!!", world.reset_open);
            return true;
        }
        output[kResetRequests] += "0881 02; ";
        if (world.reset_request != 0) {
            Failure("CMainFrame::Reset_DVR", "DeviceIoControl() fail!!!", world.reset_request);
            return true;
        }
    }
    return SleepFor(running, 2s);
}

void WizardModel::SuspendSystem(int) {
    output[kHalCodes] += "01012020; ";
    if (world.hal != 0) {
        Failure("CMainFrame::OnXCommand", "KernelIoControl( IOCTL_HAL_ENTER_SUSPEND_MODE ) fail!!!",
                world.hal);
        return;
    }
    Line("\tCMainFrame::OnXCommand, SystemSuspend");
    output[kPowerStates] += "00020000; ";
}

void WizardModel::ToStep(int step) {
    moves_.insert({step_, step});
    step_ = step;
}

void WizardModel::ToStepIfImage(int step) {
    if (percent_ == 0 && image_version_ != 0)
        ToStep(step);
}

void WizardModel::HideThree(int) {
    for (const Control control : {kNext, kUpdate, kSuspend})
        Hide(control);
}

void WizardModel::ShowOnly(int control) {
    HideThree();
    Show(control);
}

void WizardModel::GoOffline(int) {
    was_offline_ = true;
    HideThree();
    Apply(Screen::kOffline);
}

void WizardModel::Arm(int id, int milliseconds) {
    const auto number = static_cast<std::uint64_t>(id);
    Kill(number);
    const Time period = std::chrono::milliseconds(milliseconds);
    timers_.push_back({number, period, now_ + period});
}

void WizardModel::Kill(std::uint64_t id) {
    std::erase_if(timers_, [id](const TimerState& timer) { return timer.id == id; });
}

// Another thread's paint comes next, but does not come now.
void WizardModel::Repaint(int) {
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
