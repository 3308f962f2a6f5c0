#include "tests/model/lockstep/campaign.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "tests/model/generator.h"
#include "tests/model/lockstep/lockstep.h"
#include "tests/model/text.h"

namespace tests::model {
namespace {

constexpr std::size_t kEventsASequence = 300;
// Of a shortened sequence: each costs a start of the program.
constexpr int kMostReplays = 2000;

// What the program prints when it starts, thousands of times, is not for the reader of a test.
class Silence {
  public:
    Silence() : kept_((std::fflush(stdout), dup(STDOUT_FILENO))) {
        const int nothing = open("/dev/null", O_WRONLY);
        dup2(nothing, STDOUT_FILENO);
        close(nothing);
    }
    ~Silence() {
        std::fflush(stdout);
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

  private:
    int kept_;
};

std::string RunSequence(const Sequence& sequence) {
    Lockstep lockstep(sequence.world, sequence.start_milliseconds);
    for (const Event& event : sequence.events) {
        if (lockstep.model().closed())
            break;
        std::string difference = lockstep.Apply(event);
        if (!difference.empty())
            return difference;
    }
    if (!lockstep.model().closed())
        lockstep.Apply({100, Kind::kClose, 0, 0, {}});
    return lockstep.End();
}

// Drops what is not needed for a difference to stay, in ever smaller pieces.
void Shorten(Sequence& sequence) {
    int replays = 0;
    for (std::size_t piece = sequence.events.size() / 2; piece > 0; piece /= 2) {
        for (std::size_t at = 0; at < sequence.events.size() && replays < kMostReplays;) {
            Sequence shorter = sequence;
            const auto begin = shorter.events.begin() + static_cast<std::ptrdiff_t>(at);
            const auto count =
                static_cast<std::ptrdiff_t>(std::min(piece, shorter.events.size() - at));
            shorter.events.erase(begin, begin + count);
            ++replays;
            if (RunSequence(shorter).empty())
                at += piece;
            else
                sequence = std::move(shorter);
        }
    }
}

std::string RunRandom(std::uint64_t seed, std::uint64_t most, Outcome& outcome) {
    Generator generator(seed);
    Sequence sequence = generator.Begin();
    std::string difference;
    {
        Lockstep lockstep(sequence.world, sequence.start_milliseconds);
        const std::size_t count = std::min<std::uint64_t>(kEventsASequence, most);
        while (difference.empty() && !lockstep.model().closed()) {
            const bool last = sequence.events.size() + 1 >= count;
            sequence.events.push_back(last ? generator.Last() : generator.Next(lockstep.model()));
            difference = lockstep.Apply(sequence.events.back());
            ++outcome.events;
            if (last)
                break;
        }
        if (difference.empty())
            difference = lockstep.End();
    }
    ++outcome.sequences;
    if (difference.empty())
        return {};
    Shorten(sequence);
    return Text("seed %llu\n", static_cast<unsigned long long>(seed)) + RunSequence(sequence) +
           "after\n" + ToText(sequence);
}

}  // namespace

std::string Replay(const Sequence& sequence) {
    const Silence silence;
    return RunSequence(sequence);
}

Outcome RunCampaign(std::uint64_t events, std::uint64_t seed) {
    const Silence silence;
    Outcome outcome;
    while (outcome.events < events && outcome.problem.empty())
        outcome.problem = RunRandom(seed++, events - outcome.events, outcome);
    return outcome;
}

std::string NeverReached() {
    std::string missing;
    for (int step = kPowerOn; step <= kReopen; ++step) {
        for (std::size_t kind = 0; kind < static_cast<std::size_t>(Kind::kCount); ++kind) {
            const auto& here = Lockstep::Covered()[IndexOf(step)];
            const char* const name = NameOf(static_cast<Kind>(kind));
            const auto count = [&](Situation situation) {
                return here[static_cast<std::size_t>(situation)][kind];
            };
            if (count(Situation::kIdle) == 0)
                missing += Text("event %s at step %d\n", name, step);
            // Without a notice nothing is told to it.
            if (count(Situation::kBusy) == 0 &&
                kind < static_cast<std::size_t>(Kind::kNoticeCommand))
                missing += Text("event %s at step %d within a wait\n", name, step);
            // The notice stays up while the wizard moves on under it.
            if (count(Situation::kNotice) == 0 && (step == kPowerOn || step == kWait))
                missing += Text("event %s at step %d under the notice\n", name, step);
        }
    }
    for (std::size_t row = 0; row < Rules().size(); ++row)
        if (WizardModel::RulesTaken()[row] == 0)
            missing += Text("row %zu of the rules\n", row);
    constexpr std::pair<int, int> kMoves[] = {{-1, 0}, {0, 1},  {1, 2},  {2, 3},  {3, 4},  {4, 5},
                                              {2, 5},  {5, 6},  {2, 1},  {-1, 2}, {0, 2},  {4, 2},
                                              {5, 2},  {6, 2},  {0, -1}, {1, -1}, {2, -1}, {3, -1},
                                              {4, -1}, {5, -1}, {6, -1}};
    for (const auto& [from, to] : kMoves)
        if (WizardModel::Moves()[IndexOf(from)][IndexOf(to)] == 0)
            missing += Text("the move from step %d to %d\n", from, to);
    return missing;
}

std::string CoverageTable() {
    std::string table = Text("%-16s", "event");
    for (int step = kPowerOn; step <= kReopen; ++step)
        table += Text("%22s%d", "idle/notice/busy at ", step);
    table += "\n";
    for (std::size_t kind = 0; kind < static_cast<std::size_t>(Kind::kCount); ++kind) {
        table += Text("%-16s", NameOf(static_cast<Kind>(kind)));
        for (const auto& situations : Lockstep::Covered())
            table += Text(
                "%23s", Text("%llu/%llu/%llu", static_cast<unsigned long long>(situations[0][kind]),
                             static_cast<unsigned long long>(situations[1][kind]),
                             static_cast<unsigned long long>(situations[2][kind]))
                            .c_str());
        table += "\n";
    }
    return table;
}

}  // namespace tests::model
