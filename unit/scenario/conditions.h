#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "control/words.h"
#include "unit/scenario/stage.h"

namespace unit {

// Something that `wait` and `expect` can ask for: a state that holds or not, or something that has
// happened or not. It has one of the two questions.
struct Condition {
    std::string_view pattern;
    std::string_view help;

    std::function<bool(Stage&, const control::Values&)> holds{};
    // What is so instead, for a failure: "the step is 1".
    std::function<std::string(Stage&)> instead{};

    // Which of the Happening's kinds it is about.
    std::size_t kind = 0;
    std::function<bool(const Happening&, const control::Values&)> matches{};

    // What is wrong with the values of a line, when that shows before the run; empty when nothing.
    std::function<std::string(const control::Values&)> problem{};

    bool IsState() const { return holds != nullptr; }
};

std::vector<Condition> StateConditions();
std::vector<Condition> HappeningConditions();

// All of them, in the order of the documentation.
const std::vector<Condition>& Conditions();

}  // namespace unit
