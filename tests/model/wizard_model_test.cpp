#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <random>

#include "tests/model/generator.h"
#include "tests/model/lockstep/lockstep.h"
#include "tests/support/numbers.h"
#include "tests/support/progress.h"

namespace tests::model {
namespace {

// The events of one ./test, in parts that run side by side.
#ifdef TOLVANE_SANITIZED
constexpr std::uint64_t kEvents = 40'000;
#else
constexpr std::uint64_t kEvents = 1'000'000;
#endif
constexpr std::uint64_t kParts = 4;
constexpr std::size_t kEventsASequence = 300;

std::string Replay(const Sequence& sequence) {
    auto event = sequence.events.begin();
    return RunBoth(sequence, [&](const WizardModel&) {
        return event == sequence.events.end() ? std::nullopt : std::optional(*event++);
    });
}

// Drops events, the last one first, without which a difference stays.
void Shorten(Sequence& sequence) {
    for (std::size_t at = sequence.events.size(); at-- > 0;) {
        Sequence shorter = sequence;
        shorter.events.erase(shorter.events.begin() + std::ptrdiff_t(at));
        if (!Replay(shorter).empty())
            sequence = std::move(shorter);
    }
}

class ReferenceModel : public testing::TestWithParam<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(Part, ReferenceModel, testing::Range<std::uint64_t>(0, kParts));

// tools/model-check sets the variables.
TEST_P(ReferenceModel, DoesTheSameAsTheProgram) {
    const std::uint64_t enough = NumberFrom("TOLVANE_MODEL_EVENTS", kEvents) / kParts;
    // Parts far apart: each sequence has a seed of its own.
    const std::uint64_t first = NumberFrom("TOLVANE_MODEL_SEED", 1) + GetParam() * 1'000'000'000;
    const auto start = std::chrono::steady_clock::now();
    // The program prints its version at each of thousands of starts.
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
        ReportProgress(sequence.events.size(), problem.empty() ? 0 : 1);
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
}

}  // namespace
}  // namespace tests::model
