#pragma once

#include <chrono>
#include <string>

namespace unit {

// How a run went.
struct RunResult {
    std::string name;  // of the scenario or the recording
    bool passed = false;
    std::string problem = {};  // what went wrong, in one line or more; the first one is the summary
    std::chrono::microseconds unit_time{};
    std::chrono::duration<double> time{};  // of the host
    std::string output = {};               // the program's, with the unit's time
};

// The first line of the problem.
inline std::string SummaryOf(const RunResult& result) {
    return result.problem.substr(0, result.problem.find('\n'));
}

}  // namespace unit
