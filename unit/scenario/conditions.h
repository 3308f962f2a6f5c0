#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "control/words.h"
#include "unit/scenario/context.h"

namespace unit {

// What `wait` and `expect` can ask for: a state of the unit, or an event. Has either `holds` or
// `matches`.
struct Condition {
    std::string_view pattern;
    std::string_view help;

    std::function<bool(ScenarioContext&, const control::Values&)> holds{};
    // The actual state, for a failure: "the step is 1".
    std::function<std::string(ScenarioContext&)> actual{};

    // The kind of event, as an index into the variant.
    std::size_t kind = 0;
    std::function<bool(const Event&, const control::Values&)> matches{};

    // Checks the values of a line before the run; returns the problem, or nothing.
    std::function<std::string(const control::Values&)> problem{};

    bool IsState() const { return holds != nullptr; }
};

std::vector<Condition> StateConditions();
std::vector<Condition> EventConditions();

// All conditions, in the order of the documentation.
const std::vector<Condition>& Conditions();

}  // namespace unit
