// The scenario reader: any text is read, or refused with a line for each problem.
#include <algorithm>
#include <string>
#include <vector>

#include "control/protocol.h"
#include "fuzz/fuzz.h"
#include "unit/scenario/scenario.h"

namespace {

// In a folder that does not exist, so that no included file does.
constexpr char kFile[] = "/nowhere/fuzz.scenario";
constexpr std::size_t kMaxSteps = 100'000;

// The commands of the scenario, one per line.
std::string Written(const unit::Scenario& scenario) {
    std::string text;
    for (const unit::Step& step : scenario.steps)
        text += step.text + '\n';
    return text;
}

}  // namespace

void fuzz::Try(Input input) {
    const std::string text(input.Text());
    std::vector<std::string> problems;
    const auto scenario = unit::ReadScenario(text, kFile, problems);
    Check(scenario.has_value() == problems.empty(), "a refusal has a reason");
    for (const std::string& problem : problems) {
        Check(problem.starts_with(std::string(kFile) + ":"), "a problem names its place", problem);
        Check(control::IsPlainText(problem), "a problem is one line of text", problem);
    }
    if (!scenario)
        return;
    Check(scenario->steps.size() <= kMaxSteps, "repetitions have a limit");
    const std::string written = Written(*scenario);
    const auto again = unit::ReadScenario(written, kFile, problems);
    Check(again.has_value(), "a command is read as it is written", written);
    Check(Written(*again) == written, "a command is written as it was read", written);
}
