#include <gtest/gtest.h>

#include "tests/campaign/case_run.h"
#include "tests/campaign/plan.h"

namespace tests::campaign {
namespace {

constexpr std::uint32_t kSeed = 1;
constexpr int kParts = 4;
#ifdef TOLVANE_SANITIZED
constexpr std::size_t kOnEachFlow = 2;
constexpr std::size_t kPairs = 1;
constexpr std::uint64_t kEveryCall = 60;
#else
constexpr std::size_t kOnEachFlow = 5;
constexpr std::size_t kPairs = 4;
constexpr std::uint64_t kEveryCall = 12;
#endif
// The calls of the program's start, most of which it makes only there.
constexpr Range kStart{1, 480};

void ExpectNoFinding(const Case& test_case, const std::string& finding) {
    ADD_FAILURE() << ToText(test_case) << ": " << finding;
}

// Returns how many faults were injected.
std::size_t RunAll(const std::vector<Case>& cases) {
    std::size_t injected = 0;
    RunIsolated(cases, 1, [&](const Case& test_case, const Result& result) {
        injected += std::min(result.injected, test_case.faults.size());
        for (const std::string& finding : result.findings)
            ExpectNoFinding(test_case, finding);
    });
    return injected;
}

class FaultCampaign : public testing::TestWithParam<int> {};

// A part of what tools/fault-campaign does: each flow, each kind of fault, triggers at random.
TEST_P(FaultCampaign, FindsNothingInASample) {
    std::vector<const Flow*> flows;
    for (std::size_t index = GetParam(); index < Flows().size(); index += kParts)
        flows.push_back(&Flows()[index]);
    const auto kinds = Chosen("fault", {}, FaultKinds());
    const auto baselines = MeasureBaselines(flows, 1, ExpectNoFinding);
    const std::size_t singles = kOnEachFlow * flows.size();
    EXPECT_GT(RunAll(Sample(baselines, kinds, 1, singles, kSeed + GetParam())), singles / 2);
    EXPECT_GT(RunAll(Sample(baselines, kinds, 2, kPairs, kSeed + GetParam())), 0U);
    if (GetParam() == 0) {
        const auto start = Sweep({baselines.front()}, {Named("fault", kFails, FaultKinds())},
                                 kEveryCall, kStart, kSeed);
        EXPECT_EQ(RunAll(start), start.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Part, FaultCampaign, testing::Range(0, kParts));

}  // namespace
}  // namespace tests::campaign
