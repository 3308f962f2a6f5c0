#include "tests/campaign/plan.h"

#include <algorithm>
#include <random>

#include "tests/campaign/case_run.h"

namespace tests::campaign {

namespace {

// A distribution of the library may give other numbers elsewhere.
std::uint64_t Below(std::mt19937& random, std::uint64_t end) {
    return random() % end;
}

}  // namespace

std::vector<Baseline> MeasureBaselines(
    const std::vector<const Flow*>& flows, std::size_t side_by_side,
    const std::function<void(const Case&, const std::string&)>& find) {
    std::vector<Case> cases;
    for (const Flow* const flow : flows)
        cases.push_back({flow, 1, {}});
    std::vector<Baseline> baselines(flows.size());
    RunIsolated(cases, side_by_side, [&](const Case& test_case, const Result& result) {
        for (const std::string& finding : result.findings)
            find(test_case, finding);
        baselines[static_cast<std::size_t>(&test_case - cases.data())] = {test_case.flow,
                                                                          result.counts};
    });
    return baselines;
}

std::vector<Case> Sweep(const std::vector<Baseline>& baselines,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        const Range& range, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases;
    for (const Baseline& baseline : baselines)
        for (const FaultKind* const kind : kinds)
            for (std::size_t trigger = kCall; trigger <= kind->last; ++trigger) {
                const std::uint64_t last = std::min(range.last, baseline.counts[trigger]);
                for (std::uint64_t number = range.first + Below(random, every); number <= last;
                     number += every)
                    cases.push_back(
                        {baseline.flow, 1, {{kind, static_cast<Trigger>(trigger), number}}});
            }
    return cases;
}

std::vector<Case> Sample(const std::vector<Baseline>& baselines,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases(count);
    for (Case& test_case : cases) {
        const Baseline& baseline = baselines[Below(random, baselines.size())];
        test_case.flow = baseline.flow;
        while (test_case.faults.size() < faults) {
            const FaultKind* const kind = kinds[Below(random, kinds.size())];
            // A flow without a link has only calls.
            const std::size_t triggers = std::ranges::count_if(
                baseline.counts.begin(), baseline.counts.begin() + kind->last + 1,
                [](std::uint64_t number) { return number > 0; });
            const auto trigger = static_cast<Trigger>(Below(random, triggers));
            test_case.faults.push_back(
                {kind, trigger, 1 + Below(random, baseline.counts[trigger])});
        }
    }
    return cases;
}

}  // namespace tests::campaign
