// The command fault-campaign; tools/fault-campaign builds and runs it.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <map>
#include <thread>

#include "tests/campaign/case_run.h"
#include "tests/campaign/plan.h"

namespace {

using namespace tests::campaign;

constexpr int kFindings = 1;
constexpr int kWrongUsage = 2;
constexpr std::chrono::seconds kProgress(30);

void PrintRow(std::string_view name, std::span<const std::uint64_t> numbers) {
    std::printf("%-20.*s", static_cast<int>(name.size()), name.data());
    for (const std::uint64_t number : numbers)
        std::printf(" %9ju", std::uintmax_t{number});
    std::printf("\n");
    std::fflush(stdout);
}

class Report {
  public:
    void Add(std::string_view sort, const Case& test_case, const Result& result) {
        // Struck: all faults were injected. Twice: power was cycled a second time.
        const Row row = {1,
                         result.injected >= test_case.faults.size(),
                         result.cycles > 0,
                         result.cycles > 1,
                         result.reopened,
                         !result.findings.empty()};
        for (Row* const sum : {&rows_[sort], &all_})
            std::ranges::transform(*sum, row, sum->begin(), std::plus());
        for (const std::string& finding : result.findings)
            PrintFinding(test_case, finding);
        if (const auto now = Clock::now(); now - printed_ > kProgress) {
            printed_ = now;
            std::fprintf(stderr, "%ju cases done\n", std::uintmax_t{all_[0]});
        }
    }

    void PrintFinding(const Case& test_case, const std::string& finding) {
        found_ = true;
        std::printf("FINDING  %s: %s\n", ToText(test_case).c_str(), finding.c_str());
        std::fflush(stdout);
    }

    void PrintCounts() const {
        std::printf("%-20s %9s %9s %9s %9s %9s %9s\n", "fault", "cases", "struck", "recovered",
                    "twice", "reopened", "findings");
        for (const auto& [sort, row] : rows_)
            PrintRow(sort, row);
        PrintRow("all", all_);
        std::printf("%.0f s\n", std::chrono::duration<double>(Clock::now() - start_).count());
    }

    bool found() const { return found_; }

  private:
    using Clock = std::chrono::steady_clock;
    using Row = std::array<std::uint64_t, 6>;

    const Clock::time_point start_ = Clock::now();
    Clock::time_point printed_ = start_;
    std::map<std::string_view, Row> rows_;
    Row all_{};
    bool found_ = false;
};

int RunOne(const Case& test_case) {
    std::vector<std::string> log;
    const Result result = RunCase(test_case, &log);
    for (const std::string& line : log)
        std::printf("%s\n", line.c_str());
    std::printf("%s: %zu of %zu faults came; power was cycled %zu times\n",
                ToText(test_case).c_str(), result.injected, test_case.faults.size(), result.cycles);
    for (const std::string& finding : result.findings)
        std::printf("FINDING  %s\n", finding.c_str());
    return result.findings.empty() ? 0 : kFindings;
}

int Run(int count, const char* const* arguments) {
    std::string case_text;
    std::vector<std::string> flows, kind_names;
    std::uint64_t every = 0, pairs = 0;
    Range range;
    std::uint32_t seed = 1;
    std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
    CLI::App app("", "fault-campaign");
    const auto number = [&app](const char* name, auto& value, std::uint64_t least) {
        app.add_option(name, value)->check(CLI::Range(least, std::uint64_t{UINT32_MAX}));
    };
    app.add_option("--case", case_text);
    app.add_option("--flow", flows);
    app.add_option("--kind", kind_names);
    number("--every", every, 1);
    number("--pairs", pairs, 0);
    number("--from", range.first, 1);
    number("--to", range.last, 1);
    number("--seed", seed, 0);
    number("--jobs", jobs, 1);
    app.set_help_flag();
    app.parse(count, arguments);
    if (!case_text.empty())
        return RunOne(ParseCase(case_text));
    if (every == 0 && pairs == 0) {
        every = 100;
        pairs = 500;
    }

    const auto kinds = Chosen("fault", kind_names, FaultKinds());
    Report report;
    const auto baselines = MeasureBaselines(Chosen("flow", flows, Flows()), jobs,
                                            std::bind_front(&Report::PrintFinding, &report));
    std::printf("%-20s %9s %9s %9s\n", "flow", "calls", "frames", "bytes");
    for (const Baseline& baseline : baselines)
        PrintRow(baseline.flow->name, baseline.counts);
    if (every > 0)
        RunIsolated(Sweep(baselines, kinds, every, range, seed), jobs,
                    [&](const Case& test_case, const Result& result) {
                        report.Add(test_case.faults.front().kind->name, test_case, result);
                    });
    RunIsolated(Sample(baselines, kinds, 2, pairs, seed), jobs,
                std::bind_front(&Report::Add, &report, "pairs"));
    report.PrintCounts();
    return report.found() ? kFindings : 0;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return Run(count, arguments);
    } catch (const CLI::ExtrasError& error) {
        std::fprintf(stderr,
                     "fault-campaign: %s; allowed are --case, --flow, --kind, --every, --from, "
                     "--to, --pairs, --seed and --jobs\n",
                     error.what());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fault-campaign: %s\n", error.what());
    }
    return kWrongUsage;
}
