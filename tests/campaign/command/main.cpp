// Plans the cases of a fault campaign, or runs one of them; tests/campaign/run_cases.sh does both.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iostream>

#include "tests/campaign/campaign.h"

namespace {

using namespace tests::campaign;

constexpr int kFindings = 1;
constexpr int kWrongUsage = 2;

// Returns the status of the process.
int Print(const Case& test_case, const Result& result) {
    for (const std::string& finding : result.findings)
        std::cout << "FINDING  " << ToText(test_case) << ": " << finding << std::endl;
    return result.findings.empty() ? 0 : kFindings;
}

// Prints the debug output, the findings and a line of numbers.
int RunOne(const Case& test_case) {
    std::vector<std::string> log;
    const Result result = RunCase(test_case, &log);
    for (const std::string& line : log)
        std::cout << line << '\n';
    // All faults were injected; power was cycled, and a second time.
    const bool occurred = result.injected >= test_case.faults.size();
    std::cout << "RESULT "
              << (test_case.faults.size() == 1 ? test_case.faults.front().kind->name : "pairs")
              << " 1 " << occurred << ' ' << (result.cycles > 0) << ' ' << (result.cycles > 1)
              << ' ' << result.reopened << ' ' << !result.findings.empty() << '\n';
    return Print(test_case, result);
}

}  // namespace

int main(int count, char** arguments) try {
    std::string case_text, plan;
    std::vector<std::string> flows, kind_names;
    std::uint64_t every = 0, singles = 0, pairs = 0, last_call = UINT32_MAX;
    std::uint32_t seed = 1;
    CLI::App app("", "fault-campaign");
    app.add_option("--case", case_text, "run one case, \"normal fails@call:1341\"");
    app.add_option("--plan", plan, "a file for the cases that the other options describe");
    app.add_option("--every", every, "each fault at each N-th trigger of each flow");
    app.add_option("--singles", singles, "so many cases with a fault");
    app.add_option("--pairs", pairs, "so many cases with two faults");
    app.add_option("--last-call", last_call, "no fault at a later call");
    app.add_option("--flow", flows, "only these flows");
    app.add_option("--kind", kind_names, "only these kinds of fault");
    app.add_option("--seed", seed);
    try {
        app.parse(count, arguments);
        if (!case_text.empty()) {
            Case test_case = ParseCase(case_text);
            test_case.seed = seed;
            return RunOne(test_case);
        }
        const auto kinds = Chosen(kind_names, FaultKinds());
        auto baselines = MeasureBaselines(Chosen(flows, Flows()));
        int status = 0;
        std::cout << "flow                     calls    frames     bytes\n";
        for (auto& [flow, result] : baselines) {
            std::cout << std::left << std::setw(20) << flow->name << std::right;
            for (const std::uint64_t number : result.counts)
                std::cout << ' ' << std::setw(9) << number;
            std::cout << '\n';
            status = std::max(status, Print({flow}, result));
            result.counts[kCall] = std::min(result.counts[kCall], last_call);
        }
        std::vector<std::vector<Case>> parts = {Sample(baselines, kinds, 1, singles, seed),
                                                Sample(baselines, kinds, 2, pairs, seed)};
        if (every > 0)
            parts.push_back(Sweep(baselines, kinds, every, seed));
        std::ofstream file(plan);
        for (const auto& cases : parts)
            for (const Case& test_case : cases)
                file << ToText(test_case) << '\n';
        return status;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kWrongUsage;
    }
} catch (const std::exception& error) {
    std::cerr << "fault-campaign: " << error.what() << '\n';
    return kWrongUsage;
}
