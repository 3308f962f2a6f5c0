#include <gtest/gtest.h>

#include "tests/campaign/isolation.h"
#include "tests/campaign/plan.h"

namespace tests::campaign {
namespace {

template <class Rows>
auto All(const Rows& rows) {
    std::vector<decltype(&*rows.begin())> all;
    for (const auto& row : rows)
        all.push_back(&row);
    return all;
}

// Each fault once on each road, and pairs: see tools/fault-campaign for all moments.
TEST(FaultCampaign, SampleOfEveryFaultOnEveryRoad) {
    constexpr std::uint32_t kSeed = 1;
    const auto kinds = All(FaultKinds());
    const auto courses = Survey(All(Roads()), 1, [](const Case& trial, const std::string& finding) {
        ADD_FAILURE() << ToText(trial) << ": " << finding;
    });
    std::size_t struck = 0;
    const auto note = [&](const Case& trial, const Verdict& verdict) {
        struck += verdict.struck;
        for (const std::string& finding : verdict.findings)
            ADD_FAILURE() << ToText(trial) << ": " << finding;
    };
    const auto singles = Sample(courses, kinds, kSeed);
    TryApart(singles, 1, note);
    TryApart(Pairs(courses, kinds, 20, kSeed), 1, note);
    EXPECT_GT(struck, singles.size());
}

}  // namespace
}  // namespace tests::campaign
