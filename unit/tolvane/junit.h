#pragma once

#include <chrono>
#include <span>
#include <string>

namespace unit {

// How a scenario's run went, for a report.
struct ScenarioResult {
    std::string name;
    bool passed = false;
    std::string problem = {};              // what went wrong, in one line or more
    std::chrono::duration<double> time{};  // of the host
    std::string output = {};               // the program's, with the unit's time
};

// The results in the XML format of JUnit, which CI servers read: a test case for each scenario,
// with the output of those that failed.
std::string JUnitReport(std::span<const ScenarioResult> results);

}  // namespace unit
