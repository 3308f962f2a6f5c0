#include "unit/scenario/scenario_run.h"

#include <algorithm>
#include <cstdio>

#include "unit/scenario/failure_report.h"

namespace unit {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

namespace {

constexpr auto kGlance = 5ms;
constexpr std::size_t kToldHappenings = 3;

std::string Seconds(kernel::Duration time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g s", static_cast<double>(time.count()) / 1e6);
    return text;
}

}  // namespace

ScenarioRun::ScenarioRun(Operator& op, Scenario scenario, RunOptions options)
    : options_(std::move(options)),
      scenario_(std::move(scenario)),
      stage_{op, options_, options_.out.empty() ? "" : options_.out + "/" + scenario_.name,
             Happenings(op.unit().events())},
      // A unit that runs faster than the host leaves no more time for looking.
      glance_(kGlance * op.unit().time_scale()) {}

ScenarioRun::~ScenarioRun() {
    kernel::Cancel(next_look_);
}

void ScenarioRun::Start() {
    started_ = kernel::Now();
    LookIn({});
}

void ScenarioRun::Stop(const std::string& why) {
    if (!finished_)
        Fail(why);
}

kernel::Duration ScenarioRun::duration() const {
    return (finished_ ? ended_ : kernel::Now()) - started_;
}

void ScenarioRun::LookIn(kernel::Duration time) {
    next_look_ = kernel::After(time, [this] { Look(); });
}

void ScenarioRun::Look() {
    if (stage_.happenings.Count() >= Happenings::kMost)
        return Fail("more than " + std::to_string(Happenings::kMost) +
                    " things have happened; a scenario looks back on no more");
    // A tap ends by itself; the next command begins after it.
    while (!finished_ && !stage_.op.busy()) {
        if (position_ == scenario_.steps.size()) {
            Finish();
            return;
        }
        const Step& step = scenario_.steps[position_];
        if (!progress_)
            Begin(step);
        const Verdict verdict =
            std::visit([this](const auto& deed) { return Proceed(deed); }, step.deed);
        if (verdict == Verdict::kFailed)
            Fail(why_);
        if (verdict != Verdict::kDone)
            break;
        progress_.reset();
        ++position_;
    }
    if (!finished_)
        LookIn(glance_);
}

void ScenarioRun::Begin(const Step& step) {
    options_.trace(step.text);
    progress_ = Progress{kernel::Now(), 0, 0};
    const Check* const check = std::get_if<Check>(&step.deed);
    if (!check || check->condition->IsState())
        return;
    progress_->looked_to = check->manner == Check::Manner::kWait
                               ? stage_.read_on[check->condition->kind]
                           : check->manner == Check::Manner::kExpect ? stage_.begin
                                                                     : stage_.happenings.Count();
}

ScenarioRun::Verdict ScenarioRun::Proceed(const Act& act) {
    const control::Outcome outcome = act.follow(stage_);
    why_ = outcome.text;
    if (!outcome.done)
        return Verdict::kFailed;
    if (!outcome.text.empty())
        options_.trace("  " + outcome.text);
    return Verdict::kDone;
}

ScenarioRun::Verdict ScenarioRun::Proceed(const Pause& pause) {
    return kernel::Now() - progress_->began >= pause.time ? Verdict::kDone : Verdict::kNotYet;
}

ScenarioRun::Verdict ScenarioRun::Proceed(const Check& check) {
    const kernel::Duration passed = kernel::Now() - progress_->began;
    const bool is_so = IsSo(check) == check.wanted;
    if (check.manner == Check::Manner::kThroughout) {
        if (is_so)
            return passed >= check.time ? Verdict::kDone : Verdict::kNotYet;
        why_ = (check.wanted ? "no longer so after " : "came after ") + Seconds(passed);
    } else if (is_so) {
        if (check.manner == Check::Manner::kWait && !check.condition->IsState())
            stage_.read_on[check.condition->kind] = progress_->looked_to;
        return Verdict::kDone;
    } else if (passed < check.time) {
        return Verdict::kNotYet;
    } else if (check.time == kernel::Duration{}) {
        why_ = check.wanted ? "it is not so" : "it is so";
    } else {
        why_ =
            (check.wanted ? "did not come within " : "was still so after ") + Seconds(check.time);
    }
    why_ += Instead(check);
    return Verdict::kFailed;
}

bool ScenarioRun::IsSo(const Check& check) {
    if (check.condition->IsState())
        return check.condition->holds(stage_, check.values);
    const std::int64_t wanted = check.values.Number("COUNT", 1);
    const auto matches = [&](const Happening& happening) {
        return check.condition->matches(happening, check.values);
    };
    while (progress_->found < wanted) {
        const auto at = stage_.happenings.Find(progress_->looked_to, matches);
        if (!at) {
            progress_->looked_to = stage_.happenings.Count();
            return false;
        }
        progress_->looked_to = *at + 1;
        ++progress_->found;
    }
    return true;
}

std::string ScenarioRun::Instead(const Check& check) {
    if (check.condition->instead)
        return "; " + check.condition->instead(stage_);
    if (check.condition->IsState())
        return {};
    std::string text = check.values.Has("COUNT")
                           ? "; it came " + std::to_string(progress_->found) + " times"
                           : std::string();
    text += "; the latest of its kind:";
    for (const std::string& line :
         stage_.happenings.Latest(kToldHappenings, [&](const Happening& happening) {
             return happening.index() == check.condition->kind;
         }))
        text += "\n    " + line;
    return text;
}

void ScenarioRun::Finish() {
    finished_ = true;
    ended_ = kernel::Now();
}

void ScenarioRun::Fail(const std::string& why) {
    const bool behind = position_ == scenario_.steps.size();
    const Step& step = scenario_.steps[behind ? position_ - 1 : position_];
    problem_ = step.Place() + ": " + step.text + ": " + why + "\n    on the screen stand " +
               stage_.op.TextsOnScreen();
    Finish();
    if (!stage_.out.empty())
        problem_ += "\n    " + SaveFailure(stage_, problem_);
}

}  // namespace unit
