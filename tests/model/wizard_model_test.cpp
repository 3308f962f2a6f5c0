#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "tests/model/generator.h"
#include "tests/model/lockstep/campaign.h"

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

std::uint64_t Number(const char* variable, std::uint64_t usual) {
    const char* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : usual;
}

class Campaign : public testing::TestWithParam<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(Part, Campaign, testing::Range<std::uint64_t>(0, kParts));

// tools/model-check sets the variables.
TEST_P(Campaign, ProgramAndModelDoTheSame) {
    const std::uint64_t events = Number("TOLVANE_MODEL_EVENTS", kEvents) / kParts;
    // Parts far apart: each sequence has a seed of its own.
    const std::uint64_t seed = Number("TOLVANE_MODEL_SEED", 1) + GetParam() * 1'000'000'000;
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome = RunCampaign(events, seed);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::cout << outcome.events << " events in " << outcome.sequences << " sequences from seed "
              << seed << ", " << took.count() << " s\n";
    if (std::getenv("TOLVANE_MODEL_TABLE"))
        std::cout << CoverageTable();
    ASSERT_TRUE(outcome.problem.empty()) << outcome.problem;
    ASSERT_GE(outcome.events, events);
    if (events >= kEnoughToReachAll) {
        EXPECT_EQ(NeverReached(), "");
    }
}

// Sequences as a mismatch prints them; tools/model-check names one in a file.
TEST(Replay, ShowsNoDifference) {
    std::vector<std::string> texts = {
        // The window closes behind a command that waits, with a touch still to come.
        "start 20000 ac 1 link 1\n5 press 699 438\n5 release 699 438\n100 hold 100\n"
        "1 command 1012\n300 press 757 26\n5 command 1014\n5 release 757 26\n4000 pass\n",
        // The wizard moves on under the notice, and starts over when the supply comes back.
        "start 20000 ac 1 link 1\n5 press 499 438\n5 release 499 438\n"
        "100 percent A55A80002E0001640212\n3500 pass\n20 power 0 1\n20 power 1 1\n"
        "20 press 699 438\n20 release 699 438\n9000 pass\n",
    };
    if (const char* const name = std::getenv("TOLVANE_MODEL_REPLAY")) {
        std::ifstream file(name);
        ASSERT_TRUE(file) << name << " cannot be read";
        texts = {std::string(std::istreambuf_iterator<char>(file), {})};
    }
    for (const std::string& text : texts) {
        Sequence sequence;
        std::string problem;
        ASSERT_TRUE(FromText(text, sequence, problem)) << problem;
        ASSERT_FALSE(sequence.events.empty());
        const std::string difference = Replay(sequence);
        EXPECT_TRUE(difference.empty()) << difference << text;
    }
}

TEST(Sequences, AreReadAsTheyAreWritten) {
    Generator generator(7);
    Sequence sequence = generator.Begin();
    const WizardModel wizard(sequence.world, Time{});
    for (int count = 0; count < 1000; ++count)
        sequence.events.push_back(generator.Next(wizard));
    const std::string text = ToText(sequence);
    Sequence read;
    std::string problem;
    ASSERT_TRUE(FromText(text, read, problem)) << problem;
    EXPECT_EQ(ToText(read), text);
    EXPECT_FALSE(FromText("start 1 ac 1 link 1\n\n5 jump 1\n", read, problem));
    EXPECT_EQ(problem, "line 3: unknown event 'jump'");
}

}  // namespace
}  // namespace tests::model
