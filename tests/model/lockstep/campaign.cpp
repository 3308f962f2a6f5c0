#include "tests/model/lockstep/campaign.h"

#include <gtest/gtest.h>

#include "tests/model/generator.h"
#include "tests/model/lockstep/lockstep.h"
#include "tests/model/text.h"

namespace tests::model {
namespace {

constexpr std::size_t kEventsASequence = 300;
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

// The next sequence; its difference.
std::string RunRandom(Sequence& sequence, Generator& generator, std::size_t count) {
    Lockstep lockstep(sequence.world, sequence.start_milliseconds);
    while (!lockstep.model().closed()) {
        const bool last = sequence.events.size() + 1 >= count;
        sequence.events.push_back(last ? generator.Last() : generator.Next(lockstep.model()));
        const std::string difference = lockstep.Apply(sequence.events.back());
        if (!difference.empty())
            return difference;
        if (last)
            break;
    }
    return lockstep.End();
}

}  // namespace

std::string Replay(const Sequence& sequence) {
    Lockstep lockstep(sequence.world, sequence.start_milliseconds);
    std::string difference;
    for (const Event& event : sequence.events) {
        if (lockstep.model().closed() || !difference.empty())
            break;
        difference = lockstep.Apply(event);
    }
    if (difference.empty() && !lockstep.model().closed())
        difference = lockstep.Apply({100, Kind::kClose, kCloseMessage});
    return difference.empty() ? lockstep.End() : difference;
}

Outcome RunCampaign(std::uint64_t events, std::uint64_t seed) {
    // What the program prints when it starts, thousands of times, is not for the reader of a test.
    testing::internal::CaptureStdout();
    Outcome outcome;
    for (; outcome.events < events && outcome.problem.empty(); ++outcome.sequences, ++seed) {
        Generator generator(seed);
        Sequence sequence = generator.Begin();
        const std::string difference =
            RunRandom(sequence, generator,
                      std::min<std::uint64_t>(kEventsASequence, events - outcome.events));
        outcome.events += sequence.events.size();
        if (difference.empty())
            continue;
        Shorten(sequence);
        outcome.problem = Text("seed %llu\n", static_cast<unsigned long long>(seed)) +
                          Replay(sequence) + "after\n" + ToText(sequence);
    }
    testing::internal::GetCapturedStdout();
    return outcome;
}

std::string NeverReached() {
    std::string missing = WizardModel::NeverTaken();
    for (int step = kPowerOn; step <= kReopen; ++step) {
        for (int number = 0; number < static_cast<int>(Kind::kCount); ++number) {
            const auto kind = static_cast<Kind>(number);
            const auto look_for = [&](Situation situation, const char* where) {
                if (!Lockstep::Covered().contains({step, situation, kind}))
                    missing += Text("event %s at step %d %s\n", NameOf(kind), step, where);
            };
            look_for(Situation::kIdle, "");
            look_for(Situation::kBusy, "within a wait");
            // The notice stays up while the wizard moves on under it.
            if (step == kPowerOn || step == kWait)
                look_for(Situation::kNotice, "under the notice");
        }
    }
    return missing;
}

}  // namespace tests::model
