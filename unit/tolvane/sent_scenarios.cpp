#include "unit/tolvane/sent_scenarios.h"

#include <cstdio>

namespace unit {

namespace kernel = platform::kernel;
using control::Done;
using control::Refused;

namespace {

constexpr std::chrono::milliseconds kLookAgain{10};

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

}  // namespace

SentScenarios::~SentScenarios() {
    kernel::Cancel(next_look_);
}

void SentScenarios::Run(const SentScenario& sent) {
    if (run_)
        return sent.answer->End(Refused("the unit is at another scenario, " +
                                        run_->scenario().name + "; allowed is one at a time"));
    std::vector<std::string> problems;
    auto scenario = ReadScenario(sent.text, sent.file.empty() ? "scenario" : sent.file, problems);
    if (!scenario)
        return sent.answer->End(Refused(Joined(problems)));
    if (!scenario->first_setting.empty())
        return sent.answer->End(Refused(scenario->first_setting +
                                        ": holds from a unit's start, and this one runs already"));
    answer_ = sent.answer;
    RunOptions options = options_;
    const auto tell = [answer = answer_](const std::string& line) { answer->Line(line); };
    options.say = tell;
    options.trace = [tell](const std::string& command) { tell("> " + command); };
    run_.emplace(operator_, std::move(*scenario), std::move(options));
    run_->Start();
    Look();
}

void SentScenarios::Look() {
    if (!answer_->wanted())
        run_->Stop("nobody waits for it any more");
    if (run_->finished())
        return End();
    next_look_ = kernel::After(kLookAgain * operator_.unit().time_scale(), [this] { Look(); });
}

void SentScenarios::End() {
    char time[32];
    std::snprintf(time, sizeof time, "%.1f s", static_cast<double>(run_->duration().count()) / 1e6);
    answer_->End(run_->passed()
                     ? Done(run_->scenario().name + ": passed, " + time + " of unit time")
                     : Refused(run_->problem()));
    run_.reset();
    answer_.reset();
}

}  // namespace unit
