// fault-campaign: see tools/fault-campaign.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <map>
#include <thread>

#include "tests/campaign/plan.h"
#include "tests/campaign/trial.h"

namespace {

using namespace tests::campaign;

constexpr int kFindings = 1;
constexpr int kWrongUsage = 2;
constexpr std::chrono::seconds kProgress(30);

struct Request {
    std::string case_text;
    std::vector<std::string> flows, kinds;
    std::uint64_t every = 0, pairs = 0;
    Range range;
    std::uint32_t seed = 1;
    std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
};

void PrintRow(const std::string& name, std::span<const std::uint64_t> numbers) {
    std::printf("%-20s", name.c_str());
    for (const std::uint64_t number : numbers)
        std::printf(" %9ju", std::uintmax_t{number});
    std::printf("\n");
    std::fflush(stdout);
}

class Campaign {
  public:
    void Record(const std::string& sort, const Case& trial, const Result& result) {
        // Injected: all of its faults came. Twice: it needed a second cycle of power.
        const Row row = {1,
                         result.injected >= trial.faults.size(),
                         result.cycles > 0,
                         result.cycles > 1,
                         result.reopened,
                         !result.findings.empty()};
        for (Row* const sum : {&rows_[sort], &all_})
            std::ranges::transform(*sum, row, sum->begin(), std::plus());
        for (const std::string& finding : result.findings)
            Tell(trial, finding);
        if (const auto now = Clock::now(); now - told_ > kProgress) {
            told_ = now;
            std::fprintf(stderr, "%ju cases done\n", std::uintmax_t{all_[0]});
        }
    }

    void Tell(const Case& trial, const std::string& finding) {
        found_ = true;
        std::printf("FINDING  %s: %s\n", ToText(trial).c_str(), finding.c_str());
        std::fflush(stdout);
    }

    void TellCounts() const {
        std::printf("%-20s %9s %9s %9s %9s %9s %9s\n", "fault", "cases", "injected", "recovered",
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
    Clock::time_point told_ = start_;
    std::map<std::string, Row> rows_;
    Row all_{};
    bool found_ = false;
};

// All of them when there are no names.
template <class Rows>
auto Chosen(const std::string& what, const std::vector<std::string>& names, const Rows& rows) {
    std::vector<decltype(&rows[0])> chosen;
    for (const std::string& name : names)
        chosen.push_back(Named(what, name, rows));
    if (names.empty())
        for (const auto& row : rows)
            chosen.push_back(&row);
    return chosen;
}

bool FindsInOne(const std::string& text) {
    const Case trial = ParseCase(text);
    std::vector<std::string> log;
    const Result result = RunCase(trial, &log);
    for (const std::string& line : log)
        std::printf("%s\n", line.c_str());
    std::printf("%s: %zu of %zu faults came; power was cycled %zu times\n", ToText(trial).c_str(),
                result.injected, trial.faults.size(), result.cycles);
    for (const std::string& finding : result.findings)
        std::printf("FINDING  %s\n", finding.c_str());
    return !result.findings.empty();
}

bool FindsInMany(const Request& request) {
    const auto kinds = Chosen("fault", request.kinds, FaultKinds());
    Campaign campaign;
    const auto baselines = MeasureBaselines(
        Chosen("flow", request.flows, Flows()), request.jobs,
        [&](const Case& trial, const std::string& finding) { campaign.Tell(trial, finding); });
    std::printf("%-20s %9s %9s %9s\n", "flow", "calls", "frames", "bytes");
    for (const Baseline& baseline : baselines)
        PrintRow(std::string(baseline.flow->name), baseline.counts);
    if (request.every > 0)
        RunIsolated(Sweep(baselines, kinds, request.every, request.range, request.seed),
                    request.jobs, [&](const Case& trial, const Result& result) {
                        campaign.Record(std::string(trial.faults.front().kind->name), trial,
                                        result);
                    });
    RunIsolated(
        Sample(baselines, kinds, 2, request.pairs, request.seed), request.jobs,
        [&](const Case& trial, const Result& result) { campaign.Record("pairs", trial, result); });
    campaign.TellCounts();
    return campaign.found();
}

int Run(int count, const char* const* arguments) {
    Request request;
    CLI::App app("", "fault-campaign");
    const auto number = [&app](const char* name, auto& value, std::uint64_t least) {
        app.add_option(name, value)
            ->check(CLI::Range(least, std::uint64_t{UINT32_MAX}))
            ->type_name("NUMBER");
    };
    app.add_option("--case", request.case_text)->type_name("TEXT");
    app.add_option("--flow", request.flows)->type_name("NAME");
    app.add_option("--kind", request.kinds)->type_name("NAME");
    number("--every", request.every, 1);
    number("--pairs", request.pairs, 0);
    number("--from", request.range.first, 1);
    number("--to", request.range.last, 1);
    number("--seed", request.seed, 0);
    number("--jobs", request.jobs, 1);
    app.set_help_flag();
    app.parse(count, arguments);
    if (!request.case_text.empty())
        return FindsInOne(request.case_text) ? kFindings : 0;
    if (request.every == 0 && request.pairs == 0) {
        request.every = 100;
        request.pairs = 500;
    }
    return FindsInMany(request) ? kFindings : 0;
}

int RunOrRefuse(int count, const char* const* arguments) {
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

}  // namespace

int main(int count, char** arguments) {
    return RunOrRefuse(count, arguments);
}
