#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/campaign/case.h"

namespace tests::campaign {

struct Result {
    // What must not happen, a line each; empty when the case passed.
    std::vector<std::string> findings;
    // How many of the case's faults were injected: one may keep the trigger of another from coming.
    std::size_t injected = 0;
    // How often external power was cycled until the update was complete; 0 when the program was
    // closed before.
    std::size_t cycles = 0;
    // The program had to be started again: a part of it failed to start, which it tries only once.
    bool reopened = false;
    // How many of each trigger the flow had in this run.
    Counts counts{};
};

// Runs one case in simulated time: the flow with its faults; then, unless the program was closed,
// external power off and on with a healthy DVR and unit, and a whole update; then the end. `log`
// gets the debug output. What fails may be left behind in this process.
Result RunCase(const Case& test_case, std::vector<std::string>* log = nullptr);

// Runs each case in a process of its own, so many side by side. A process that dies, or that takes
// more than ample time of the host, is a finding of its case. `done` is called for each in the
// order in which they end. The calling process must have one thread and no child.
void RunIsolated(const std::vector<Case>& cases, std::size_t side_by_side,
                 const std::function<void(const Case&, const Result&)>& done);

}  // namespace tests::campaign
