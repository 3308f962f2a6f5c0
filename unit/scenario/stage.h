#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "unit/commands/operator.h"
#include "unit/scenario/happenings.h"

namespace unit {

// What a scenario is told by whoever runs it.
struct RunOptions {
    // Where `picture` puts its numbered pictures; none are made when empty.
    std::string pictures;
    // Where a folder of the scenario's name takes what a failed run leaves; nothing when empty.
    std::string out;
    // `expect screen` and `expect graphics` make their files instead of comparing with them.
    bool update_screens = false;
    std::uint32_t seed = 1;  // of the unit, to be told with a failure
    // Takes a line for the person who runs it.
    std::function<void(const std::string&)> say = [](const std::string&) {};
    // Takes each command as it begins, and what it answers.
    std::function<void(const std::string&)> trace = [](const std::string&) {};
};

// What a scenario's commands act on and look at. Hardware's thread.
struct Stage {
    Operator& op;
    const RunOptions& options;
    // The folder that takes what this run leaves when it fails; empty when nothing is to be left.
    std::string out;
    Happenings happenings;
    // What conditions look at begins here: at the scenario's beginning, or at the last `forget`.
    std::size_t begin = 0;
    // For each kind of happening, where the next wait for one reads on.
    std::array<std::size_t, kHappeningKinds> read_on{};
    std::size_t pictures = 0;
};

}  // namespace unit
