#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

#include "tests/model/lockstep/campaign.h"
#include "tests/support/numbers.h"

namespace tests::model {
namespace {

// What ./test runs of the program against its model, in parts that run side by side.
#ifdef TOLVANE_SANITIZED
constexpr std::uint64_t kEvents = 40'000;
#else
constexpr std::uint64_t kEvents = 1'000'000;
#endif
constexpr std::uint64_t kParts = 4;
// Fewer may miss something by chance.
constexpr std::uint64_t kEnoughToReachAll = 200'000;

class Campaign : public testing::TestWithParam<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(Part, Campaign, testing::Range<std::uint64_t>(0, kParts));

// tools/model-check sets the variables.
TEST_P(Campaign, ProgramAndModelDoTheSame) {
    const std::uint64_t events = NumberFrom("TOLVANE_MODEL_EVENTS", kEvents) / kParts;
    // Parts far apart: each sequence has a seed of its own.
    const std::uint64_t seed = NumberFrom("TOLVANE_MODEL_SEED", 1) + GetParam() * 1'000'000'000;
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome = RunCampaign(events, seed);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::cout << outcome.events << " events in " << outcome.sequences << " sequences from seed "
              << seed << ", " << took.count() << " s\n";
    ASSERT_TRUE(outcome.problem.empty()) << outcome.problem;
    ASSERT_GE(outcome.events, events);
    if (events >= kEnoughToReachAll) {
        EXPECT_EQ(NeverReached(), "");
    }
}

}  // namespace
}  // namespace tests::model
