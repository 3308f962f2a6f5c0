#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/campaign/case.h"

namespace tests::campaign {

struct Result {
    // What must not be, a line each; a good trial has none.
    std::vector<std::string> findings;
    // How many of the case's faults came: a fault may keep the trigger of another one from coming.
    std::size_t injected = 0;
    // How often external power was cycled before the update could be completed, 0 when the program
    // was closed before.
    std::size_t cycles = 0;
    // Whether the program had to be opened again for it: a part of it could not be started, and it
    // starts those once.
    bool reopened = false;
    // What the flow has to offer to a case, on this run.
    Counts counts{};
};

// Runs one case in simulated time: the flow with its faults, then, unless the program was closed,
// external power away and back with a healthy DVR and unit, and a whole update; then the end.
// Takes the process for itself: what fails may be left behind. `log` gets the debug output.
Result RunCase(const Case& trial, std::vector<std::string>* log = nullptr);

// Tries each case in a process of its own, so many side by side. One that dies, or is not done
// after a time of the host that is ample, is a finding of that case. `done` is called for each, in
// the order in which they are done. To be called while the process has one thread and no child.
void RunIsolated(const std::vector<Case>& cases, std::size_t side_by_side,
                 const std::function<void(const Case&, const Result&)>& done);

}  // namespace tests::campaign
