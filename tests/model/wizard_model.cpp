#include "tests/model/wizard_model.h"

#include <algorithm>

namespace tests::model {

using namespace std::chrono_literals;

WizardModel::WizardModel(const World& environment, Time start)
    : world(environment), now_(start), reading_since_(start), ac_line_(environment.ac_line) {
    for (const ControlRow& row : Controls())
        controls_.push_back({row.visible, false, row.text, row.color});
    main_.exists = main_.invalid = true;
    if (world.has_link)
        for (const int query : {0x8010, 0x8011, 0x802E, 0x8026})
            Send(query);
    Arm(kCardOutTimer, 100);
    // A wizard that starts without supply shows the offline screen at once.
    if (ac_line_ == 0)
        GoOffline();
    RunThread();
}

void WizardModel::Failure(const char* function, const char* what, unsigned error) {
    Line(Text("\t%s, %s, ErrorCode(%u), #", function, what, error));
}

std::string ViewText(int step, int percent, int image_version, int running_state,
                     const std::string& dvr_version, const std::map<std::uint64_t, Time>& timers,
                     bool notice_up) {
    std::string text = Text(
        "step %d, percent %d, image version %d, running state %d, DVR version '%s'%s, timers", step,
        percent, image_version, running_state, dvr_version.c_str(), notice_up ? ", notice up" : "");
    for (const auto& [id, due] : timers)
        text += " " + std::to_string(id) + " at " + std::to_string(due.count());
    return text;
}

std::string WizardModel::View() const {
    std::map<std::uint64_t, Time> timers;
    for (const TimerState& timer : timers_)
        timers[timer.id] = timer.due;
    return ViewText(step_, percent_, image_version_, running_state_, version_.data(), timers,
                    notice_.exists);
}

std::vector<Shown> WizardModel::screen() const {
    std::vector<Shown> shown;
    for (const auto& [control, drawn] : (notice_.exists ? notice_ : main_).drawn) {
        const ControlRow& row = Controls()[control];
        if (!drawn.first.empty())
            shown.push_back({drawn.first, drawn.second, row.left, row.top, row.right, row.bottom});
    }
    return shown;
}

Time WizardModel::NextDeadline() const {
    if (busy())
        return stack_.back().wake;
    Time next = Time::max();
    for (const TimerState& timer : timers_)
        next = std::min(next, timer.due);
    return next;
}

void WizardModel::RunTo(Time time) {
    while (!closed_ && NextDeadline() <= time) {
        now_ = std::max(now_, NextDeadline());
        RunThread();
    }
    now_ = time;
}

void WizardModel::Post(unsigned message, std::uint64_t wparam, std::uint64_t lparam) {
    posted_.push_back({&main_, message, wparam, lparam});
}

void WizardModel::PostToNotice(unsigned message, std::uint64_t wparam) {
    if (notice_.exists)
        posted_.push_back({&notice_, message, wparam, 0});
}

void WizardModel::PostToAll(std::uint64_t wparam, std::uint64_t lparam) {
    PostToNotice(kPowerMessage, wparam);
    Post(kPowerMessage, wparam, lparam);
}

void WizardModel::SupplyUnreadable() {
    Failure("CPowerDetector::ThreadProc_PowerDetector", "GetSystemPowerStatusEx2() fail!!!", 31);
}

bool WizardModel::AtNotice() const {
    return !stack_.empty() && stack_.back().at < stack_.back().ops->size() &&
           (*stack_.back().ops)[stack_.back().at].wait == &WizardModel::ShowNotice &&
           stack_.back().phase == 1;
}

void WizardModel::RunThread() {
    while (!closed_) {
        const bool in_loop = stack_.empty() || (AtNotice() && !notice_ended_);
        if (in_loop ? !DispatchNext() : !Continue())
            return;
    }
}

// Executes the next operation of the innermost rule; false while that waits.
bool WizardModel::Continue() {
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
    running.phase = 0;
    return true;
}

void WizardModel::Take(Trigger trigger, unsigned id) {
    const auto fits = [&](const Rule& rule) {
        return rule.trigger == trigger && (rule.id == kAnyId || rule.id == id) &&
               (rule.step == kAnyStep || rule.step == step_) &&
               (!rule.guard || (this->*rule.guard)());
    };
    const Rule& rule = *std::ranges::find_if(Rules(), fits);
    if (!receiving_) {
        stack_.push_back({&rule.ops});
        return;
    }
    // The receive thread never waits.
    for (const Op& op : rule.ops)
        (this->*op.act)(op.value);
}

bool WizardModel::SleepFor(Activation& running, Time time) {
    if (running.phase == 0) {
        running.phase = 1;
        running.wake = now_ + time;
    }
    return now_ >= running.wake;
}

bool WizardModel::Poll(Activation& running, int most, bool arrived) {
    if (now_ < running.wake)
        return false;
    if (arrived || running.phase == most)
        return true;
    ++running.phase;
    running.wake = now_ + 100ms;
    return false;
}

bool WizardModel::Reset(Activation& running) {
    if (running.phase == 0) {
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

// The receive thread only requests the painting.
void WizardModel::Repaint(int) {
    main_.invalid = true;
    if (receiving_)
        main_.requested = true;
    else
        Paint(main_);
}

bool WizardModel::ShowNotice(Activation& running) {
    if (running.phase == 0) {
        if (notice_.exists)
            return true;
        running.phase = 1;
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
