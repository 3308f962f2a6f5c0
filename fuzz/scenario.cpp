// The scenario reader: any text is taken, or refused with a line for each thing that is wrong.
#include <algorithm>
#include <string>
#include <vector>

#include "control/protocol.h"
#include "fuzz/input.h"
#include "fuzz/promise.h"
#include "unit/scenario/scenario.h"

namespace {

// In a folder that is not there: an included file cannot be.
constexpr char kFile[] = "/nowhere/fuzz.scenario";
constexpr std::size_t kMostSteps = 100'000;

// The commands as they would be written.
std::string Written(const unit::Scenario& scenario) {
    std::string text;
    for (const unit::Step& step : scenario.steps)
        text += step.text + '\n';
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using fuzz::Promise;
    const std::string text(fuzz::Input(data, size).Text());
    std::vector<std::string> problems;
    const auto scenario = unit::ReadScenario(text, kFile, problems);
    Promise(scenario.has_value() == problems.empty(), "what is refused is told why");
    for (const std::string& problem : problems) {
        Promise(problem.starts_with(std::string(kFile) + ":"), "a problem names its place",
                problem);
        Promise(control::IsPlainText(problem), "a problem is one line of text", problem);
    }
    if (!scenario)
        return 0;
    Promise(scenario->steps.size() <= kMostSteps, "repetitions have a limit");
    const std::string written = Written(*scenario);
    const auto again = unit::ReadScenario(written, kFile, problems);
    Promise(again.has_value(), "a command is read as it is written", written);
    Promise(Written(*again) == written, "a command is written as it was read", written);
    return 0;
}
