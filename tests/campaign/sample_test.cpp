#include <gtest/gtest.h>

#include "tests/campaign/plan.h"
#include "tests/campaign/trial.h"

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
// What the program makes at its start it makes once, so that a failure there is another one each
// time.
constexpr Range kStart{1, 480};

std::vector<const FaultKind*> AllKinds() {
    std::vector<const FaultKind*> kinds;
    for (const FaultKind& kind : FaultKinds())
        kinds.push_back(&kind);
    return kinds;
}

// Tells of what went wrong; returns how many faults came.
std::size_t Expect(const std::vector<Case>& cases) {
    std::size_t injected = 0;
    RunIsolated(cases, 1, [&](const Case& trial, const Result& result) {
        injected += result.injected;
        for (const std::string& finding : result.findings)
            ADD_FAILURE() << ToText(trial) << ": " << finding;
    });
    return injected;
}

class FaultCampaign : public testing::TestWithParam<int> {};

// A part of what tools/fault-campaign does: each flow, each kind of fault, triggers at random.
TEST_P(FaultCampaign, FindsNothingInASample) {
    std::vector<const Flow*> flows;
    for (std::size_t index = GetParam(); index < Flows().size(); index += kParts)
        flows.push_back(&Flows()[index]);
    const auto baselines =
        MeasureBaselines(flows, 1, [](const Case& trial, const std::string& finding) {
            ADD_FAILURE() << ToText(trial) << ": " << finding;
        });
    const std::size_t singles = kOnEachFlow * flows.size();
    EXPECT_GT(Expect(Sample(baselines, AllKinds(), 1, singles, kSeed + GetParam())), singles / 2);
    EXPECT_GT(Expect(Sample(baselines, AllKinds(), 2, kPairs, kSeed + GetParam())), 0U);
    if (GetParam() == 0) {
        const auto start =
            Sweep({baselines.front()}, {&FaultKinds().front()}, kEveryCall, kStart, kSeed);
        EXPECT_EQ(Expect(start), start.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Part, FaultCampaign, testing::Range(0, kParts));

}  // namespace
}  // namespace tests::campaign
