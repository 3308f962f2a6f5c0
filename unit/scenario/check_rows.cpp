#include <deque>

#include "unit/scenario/language.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;
using namespace std::chrono_literals;

constexpr auto kDefaultLimit = 30s;

Outcome AddCheck(ScenarioReader& reader, const Condition& condition, const Values& values,
                 Check::Mode mode) {
    const std::string problem = condition.problem ? condition.problem(values) : "";
    if (!problem.empty())
        return Refused(problem);
    const auto time =
        mode == Check::Mode::kThroughout
            ? values.Duration("DURATION")
            : values.Duration("LIMIT", mode == Check::Mode::kWait ? kDefaultLimit : 0s);
    return reader.Add(Check{&condition, values, !values.Chose("no"), mode, time});
}

// A row of the words of the condition between other words.
ScenarioTable::Row CheckRow(const std::string& before, const Condition& condition,
                            const std::string& after, std::string_view help,
                            std::optional<Check::Mode> mode = std::nullopt) {
    // The table's rows refer to their patterns.
    static std::deque<std::string> patterns;
    patterns.push_back(before + std::string(condition.pattern) + after);
    return {patterns.back(), help,
            [&condition, mode](ScenarioReader& reader, const Values& values) {
                const Check::Mode by_default =
                    values.Chose("wait") ? Check::Mode::kWait : Check::Mode::kExpect;
                return AddCheck(reader, condition, values, mode.value_or(by_default));
            }};
}

Outcome Wait(ScenarioReader& reader, const Values& values) {
    return reader.Add(Pause{values.Duration("DURATION")});
}

Outcome Forget(ScenarioReader& reader, const Values&) {
    return reader.Add(Action{[](ScenarioContext& context) {
        EventMemory& memory = *context.memory;
        memory.begin = memory.events.Count();
        memory.next_wait.fill(memory.begin);
        return Done();
    }});
}

}  // namespace

ScenarioRows CheckRows() {
    ScenarioRows rows{{"wait DURATION", "Waits for that much of the unit's time.", Wait}};
    for (const Condition& condition : Conditions()) {
        if (condition.IsState()) {
            rows.push_back(
                CheckRow("wait|expect [no] ", condition, " [within LIMIT]", condition.help));
            rows.push_back(CheckRow("expect [no] ", condition, " for DURATION", condition.help,
                                    Check::Mode::kThroughout));
        } else {
            rows.push_back(CheckRow("wait|expect ", condition, " [times COUNT] [within LIMIT]",
                                    condition.help));
            rows.push_back(CheckRow("expect no ", condition, "", condition.help));
            rows.push_back(CheckRow("expect no ", condition, " for DURATION", condition.help,
                                    Check::Mode::kThroughout));
        }
    }
    rows.push_back({"forget", "The conditions that follow ignore the events so far.", Forget});
    return rows;
}

}  // namespace unit
