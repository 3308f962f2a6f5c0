#include <deque>

#include "unit/scenario/language.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;
using Manner = Check::Manner;
using namespace std::chrono_literals;

constexpr auto kUsualLimit = 30s;

Outcome AddCheck(ScenarioReader& reader, const Condition& condition, const Values& values,
                 Manner manner) {
    const std::string problem = condition.problem ? condition.problem(values) : "";
    if (!problem.empty())
        return Refused(problem);
    const auto time = manner == Manner::kThroughout
                          ? values.Duration("DURATION")
                          : values.Duration("LIMIT", manner == Manner::kWait ? kUsualLimit : 0s);
    return reader.Add(Check{&condition, values, !values.Chose("no"), manner, time});
}

// A row whose words go before and behind the condition's.
ScenarioTable::Row CheckRow(const std::string& before, const Condition& condition,
                            const std::string& behind, std::string_view help,
                            std::optional<Manner> manner = std::nullopt) {
    // The table's rows refer to their patterns.
    static std::deque<std::string> patterns;
    patterns.push_back(before + std::string(condition.pattern) + behind);
    return {patterns.back(), help,
            [&condition, manner](ScenarioReader& reader, const Values& values) {
                const Manner usual = values.Chose("wait") ? Manner::kWait : Manner::kExpect;
                return AddCheck(reader, condition, values, manner.value_or(usual));
            }};
}

Outcome Wait(ScenarioReader& reader, const Values& values) {
    return reader.Add(Pause{values.Duration("DURATION")});
}

Outcome Forget(ScenarioReader& reader, const Values&) {
    return reader.Add(Act{[](Stage& stage) {
        stage.begin = stage.happenings.Count();
        stage.read_on.fill(stage.begin);
        return Done();
    }});
}

}  // namespace

ScenarioRows CheckRows() {
    ScenarioRows rows{{"wait DURATION", "Lets that much of the unit's time pass.", Wait}};
    for (const Condition& condition : Conditions()) {
        if (condition.IsState()) {
            rows.push_back(
                CheckRow("wait|expect [no] ", condition, " [within LIMIT]", condition.help));
            rows.push_back(CheckRow("expect [no] ", condition, " for DURATION", condition.help,
                                    Manner::kThroughout));
        } else {
            rows.push_back(CheckRow("wait|expect ", condition, " [times COUNT] [within LIMIT]",
                                    condition.help));
            rows.push_back(CheckRow("expect no ", condition, "", condition.help));
            rows.push_back(CheckRow("expect no ", condition, " for DURATION", condition.help,
                                    Manner::kThroughout));
        }
    }
    rows.push_back({"forget",
                    "What has happened so far is not looked at by the conditions that follow.",
                    Forget});
    return rows;
}

}  // namespace unit
