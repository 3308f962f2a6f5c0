#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <random>

#include "tests/model/generator.h"
#include "tests/model/lockstep/lockstep.h"
#include "tests/model/text.h"
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
constexpr std::size_t kEventsASequence = 300;
// Fewer may miss something by chance.
constexpr std::uint64_t kEnoughToReachAll = 200'000;
// Of a shortened sequence: each costs a start of the program.
constexpr int kMostReplays = 2000;

// Drops what is not needed for a difference to stay, in ever smaller pieces.
void Shorten(Sequence& sequence) {
    int replays = 0;
    for (std::size_t piece = sequence.events.size() / 2; piece > 0; piece /= 2) {
        for (std::size_t at = 0; at < sequence.events.size() && replays < kMostReplays; ++replays) {
            Sequence shorter = sequence;
            const auto begin = shorter.events.begin() + std::ptrdiff_t(at);
            shorter.events.erase(
                begin, begin + std::ptrdiff_t(std::min(piece, shorter.events.size() - at)));
            if (Replay(shorter).empty())
                at += piece;
            else
                sequence = std::move(shorter);
        }
    }
}

// What should have been reached and was not, by all runs of this process; empty when all was.
std::string NeverReached() {
    std::string missing = WizardModel::NeverTaken();
    for (int step = kPowerOn; step <= kReopen; ++step)
        for (int number = 0; number < static_cast<int>(Kind::kCount); ++number)
            for (const Situation situation :
                 {Situation::kIdle, Situation::kBusy, Situation::kNotice}) {
                // The notice stays up while the wizard moves on under it.
                if (situation == Situation::kNotice && step != kPowerOn && step != kWait)
                    continue;
                const auto kind = static_cast<Kind>(number);
                if (!Lockstep::Covered().contains({step, situation, kind}))
                    missing += Text("event %s at step %d in situation %d\n", NameOf(kind), step,
                                    static_cast<int>(situation));
            }
    return missing;
}

class Campaign : public testing::TestWithParam<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(Part, Campaign, testing::Range<std::uint64_t>(0, kParts));

// tools/model-check sets the variables.
TEST_P(Campaign, ProgramAndModelDoTheSame) {
    const std::uint64_t enough = NumberFrom("TOLVANE_MODEL_EVENTS", kEvents) / kParts;
    // Parts far apart: each sequence has a seed of its own.
    const std::uint64_t first = NumberFrom("TOLVANE_MODEL_SEED", 1) + GetParam() * 1'000'000'000;
    const auto start = std::chrono::steady_clock::now();
    // What the program prints when it starts, thousands of times, is not for the reader of a test.
    testing::internal::CaptureStdout();
    std::uint64_t events = 0, seed = first;
    std::string problem;
    for (; events < enough && problem.empty(); ++seed) {
        Generator generator([random = std::mt19937_64(seed)](unsigned limit) mutable {
            return static_cast<unsigned>(random() % limit);
        });
        Sequence sequence = generator.Begin();
        const std::size_t count = std::min<std::uint64_t>(kEventsASequence, enough - events);
        problem = RunBoth(sequence, [&](const WizardModel& wizard) -> std::optional<Event> {
            if (sequence.events.size() == count)
                return std::nullopt;
            const bool last = sequence.events.size() + 1 == count;
            sequence.events.push_back(last ? generator.Last() : generator.Next(wizard));
            return sequence.events.back();
        });
        events += sequence.events.size();
        if (!problem.empty()) {
            Shorten(sequence);
            problem = Replay(sequence) + "after\n" + ToText(sequence);
        }
    }
    testing::internal::GetCapturedStdout();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::cout << events << " events in " << seed - first << " sequences from seed " << first << ", "
              << took.count() << " s\n";
    ASSERT_TRUE(problem.empty()) << "seed " << seed - 1 << "\n" << problem;
    if (enough >= kEnoughToReachAll) {
        EXPECT_EQ(NeverReached(), "");
    }
}

}  // namespace
}  // namespace tests::model
