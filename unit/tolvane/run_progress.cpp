#include "unit/tolvane/run_progress.h"

#include <algorithm>
#include <cstdio>

#include "control/protocol.h"
#include "platform/kernel/clock.h"
#include "unit/probe/wizard_probe.h"
#include "unit/tolvane/run_unit.h"

namespace unit {
namespace {

// "about 40 s left", "about 3 min 20 s left", "about 2 h 5 min left"; empty for less than a second.
std::string Left(std::chrono::duration<double> time) {
    constexpr long kMinute = 60;
    constexpr long kHour = 60 * kMinute;
    const auto seconds = static_cast<long>(time.count());
    if (seconds < 1)
        return {};
    const auto text = [](long number, const char* unit) { return std::to_string(number) + unit; };
    return "about " +
           (seconds < kMinute ? text(seconds, " s")
            : seconds < kHour
                ? text(seconds / kMinute, " min ") + text(seconds % kMinute, " s")
                : text(seconds / kHour, " h ") + text(seconds % kHour / kMinute, " min")) +
           " left";
}

}  // namespace

void RunProgress::Begin() {
    ++begun_;
    began_ = HostClock::now();
    first_report_.reset();
}

void RunProgress::Update(const ScenarioRun& run) {
    ShowProgress([&] { return Text(run); });
}

void RunProgress::End() {
    done_ += HostClock::now() - began_;
    ClearProgress();
}

std::string RunProgress::Text(const ScenarioRun& run) {
    const std::size_t commands = run.scenario().steps.size();
    const std::string wizard = WizardText();
    char time[32];
    std::snprintf(time, sizeof time, ", at %.1f s",
                  static_cast<double>(platform::kernel::Now().count()) / 1e6);
    return (scenarios_ > 1 ? "scenario " + std::to_string(begun_) + " of " +
                                 std::to_string(scenarios_) + TimeLeft(HostClock::now()) + ": "
                           : "") +
           control::PlainText(run.scenario().name) + ": command " +
           std::to_string(std::min(run.position() + 1, commands)) + " of " +
           std::to_string(commands) + wizard + time;
}

// The step and, while the DVR updates itself, the percent and for how long its pace leaves.
std::string RunProgress::WizardText() {
    constexpr int kAll = 100;
    const std::optional<WizardState> wizard = ReadWizard();
    if (!wizard)
        return {};
    std::string text = std::string(", ") + WizardStepName(wizard->step);
    if (wizard->percent <= 0 || wizard->percent >= kAll) {
        first_report_.reset();
        return text;
    }
    text += " " + std::to_string(wizard->percent) + " %";
    const HostClock::time_point now = HostClock::now();
    if (!first_report_ || wizard->percent < first_report_->percent)
        first_report_ = Report{wizard->percent, now};
    if (scenarios_ > 1 || wizard->percent == first_report_->percent)
        return text;
    const std::string left = Left((now - first_report_->time) * (kAll - wizard->percent) /
                                  (wizard->percent - first_report_->percent));
    return left.empty() ? text : text + " (" + left + ")";
}

// By what the scenarios before took on average; nothing is known during the first.
std::string RunProgress::TimeLeft(HostClock::time_point now) const {
    if (begun_ < 2)
        return {};
    const HostClock::duration mean = done_ / (begun_ - 1);
    const auto current = std::max(mean - (now - began_), HostClock::duration{});
    const std::string left = Left(current + mean * (scenarios_ - begun_));
    return left.empty() ? left : ", " + left;
}

}  // namespace unit
