// What the control server does with each kind of request.

#include <algorithm>
#include <atomic>

#include "platform/kernel/scheduler.h"
#include "unit/commands/unit_commands.h"
#include "unit/control/control_server.h"
#include "unit/events/event_text.h"

namespace unit {

namespace kernel = platform::kernel;
using control::Done;
using control::Outcome;
using control::Refused;
using namespace std::chrono_literals;

namespace {

// How often a command that takes the unit some time is looked after, in the unit's time.
constexpr auto kLookAgain = 10ms;
constexpr auto kAcknowledgementLimit = 2s;
constexpr std::int64_t kNotHeard = -1;

}  // namespace

const std::vector<ControlServer::OwnCommand>& ControlServer::OwnCommands() {
    static const std::vector<OwnCommand> commands = {
        {"state", "Tells everything about the unit, as JSON.", &ControlServer::StartState},
        {"watch [frames|broadcasts|log|all]",
         "Tells what happens from now on: frames and broadcasts unless told.",
         &ControlServer::StartWatch},
        {"run [FILE]", "Follows the scenario that was sent along.", &ControlServer::StartRun},
        {"help", "Lists the commands.", &ControlServer::StartHelp},
        {"complete [TEXT...]", "Lists the plain words that may follow those words.",
         &ControlServer::StartComplete},
        {"other-process object NAME",
         "For a second copy of the program: the kind of the object of that name.",
         &ControlServer::StartFindObject},
        {"other-process window [class NAME] [title TEXT]",
         "For a second copy: the number of such a window, or 0.", &ControlServer::StartFindWindow},
        {"other-process forward CODE [owned]",
         "Brings that window forward, with those that it owns, and the host's window.",
         &ControlServer::StartBringForward},
    };
    return commands;
}

const control::Grammar& ControlServer::AllCommands() {
    static const control::Grammar grammar = [] {
        std::vector<std::string_view> patterns;
        for (const OwnCommand& command : OwnCommands())
            patterns.push_back(command.pattern);
        for (const UnitTable::Row& row : UnitCommands().rows())
            patterns.push_back(row.pattern);
        return control::Grammar(patterns);
    }();
    return grammar;
}

void ControlServer::Follow(const UnitTable::Row& row, const Job& job) {
    if (row.pattern == kRequestPattern)
        return RaiseRequest(row, job);
    const Outcome outcome = row.execute(operator_, job.values);
    if (!outcome.done || !operator_.busy())
        return job.answer->End(outcome);
    // A tap has been done when the finger is up again.
    EndWhen(
        job.answer,
        [this, outcome] { return operator_.busy() ? std::nullopt : std::optional(outcome); },
        kernel::kNever);
}

void ControlServer::EndWhen(std::shared_ptr<Answer> answer,
                            std::function<std::optional<Outcome>()> done, kernel::Time deadline) {
    if (const std::optional<Outcome> outcome = done())
        return answer->End(*outcome);
    if (kernel::Now() >= deadline)
        return answer->End(Refused("no acknowledgement came within " +
                                   std::to_string(kAcknowledgementLimit.count()) +
                                   " s of the unit's time"));
    if (!answer->wanted())
        return;
    kernel::After(kLookAgain, [this, alive = alive_, answer = std::move(answer),
                               done = std::move(done), deadline] {
        if (*alive)
            EndWhen(answer, done, deadline);
    });
}

void ControlServer::StartWatch(const Job& job) {
    const bool all = job.values.Chose("all");
    const bool unless_told =
        !job.values.Chose("frames") && !job.values.Chose("broadcasts") && !job.values.Chose("log");
    const WatchedKinds kinds{.frames = unless_told || job.values.Chose("frames"),
                             .broadcasts = unless_told || job.values.Chose("broadcasts"),
                             .log = all || job.values.Chose("log"),
                             .rest = all};
    watches_[job.client] = std::make_unique<Watch>(
        operator_.unit().events(), kinds,
        [answer = job.answer](const std::string& line) { answer->Line(line); });
}

void ControlServer::StartState(const Job& job) {
    if (!abilities_.state)
        return job.answer->End(Refused("this unit does not tell its state"));
    Post([this, answer = job.answer] { answer->End(Done(abilities_.state())); });
}

void ControlServer::StartRun(const Job& job) {
    if (!abilities_.run)
        return job.answer->End(Refused("this unit runs no scenarios"));
    Post([this, job] {
        abilities_.run({job.values.Text("FILE"), job.request.text, job.request.folder, job.answer});
    });
}

void ControlServer::RaiseRequest(const UnitTable::Row& row, const Job& job) {
    const PowerRequest& request = PowerRequestIn(job.values);
    // Subscribes before the request is raised: the acknowledgement may come at once.
    const auto heard = std::make_shared<std::atomic<std::int64_t>>(kNotHeard);
    const auto listening =
        std::make_shared<EventHub::Subscription>(operator_.unit().events().Subscribe(
            [heard, name = request.acknowledgement](const TimedEvent& timed) {
                const auto* const posted = std::get_if<BroadcastPosted>(&timed.event);
                if (posted && posted->name == name)
                    *heard = timed.time.count();
            }));
    const Outcome raised = row.execute(operator_, job.values);
    if (!raised.done)
        return job.answer->End(raised);
    EndWhen(
        job.answer,
        [heard, listening, name = std::string(request.name)]() -> std::optional<Outcome> {
            if (*heard == kNotHeard)
                return std::nullopt;
            return Done(UnitTimeText(std::chrono::microseconds(*heard)) + "  " + name +
                        " acknowledged");
        },
        kernel::Now() + kAcknowledgementLimit);
}

void ControlServer::StartHelp(const Job& job) {
    const auto tell = [&](std::string_view pattern, std::string_view help) {
        job.answer->Line(std::string(pattern) + "\n    " + std::string(help));
    };
    for (const OwnCommand& command : OwnCommands())
        tell(command.pattern, command.help);
    for (const UnitTable::Row& row : UnitCommands().rows())
        tell(row.pattern, row.help);
    job.answer->End(Done());
}

void ControlServer::StartComplete(const Job& job) {
    std::string ignored;
    const auto words = control::SplitWords(job.values.Text("TEXT"), ignored);
    for (const std::string& word :
         AllCommands().NextWords(words.value_or(std::vector<std::string>())))
        job.answer->Line(word);
    job.answer->End(Done());
}

}  // namespace unit
