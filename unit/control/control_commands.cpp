// How the control server executes each kind of request.

#include <algorithm>
#include <atomic>
#include <iterator>
#include <optional>

#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "platform/window/screen.h"
#include "unit/commands/unit_commands.h"
#include "unit/control/control_server.h"
#include "unit/events/event_json.h"
#include "unit/events/event_text.h"

namespace unit {

namespace kernel = platform::kernel;
namespace window = platform::window;
using control::Done;
using control::Outcome;
using control::Refused;
using platform::NamedKind;
using platform::OtherProcessWindow;
using namespace std::chrono_literals;

namespace {

// Poll interval for commands that take the unit some time, in the unit's time.
constexpr auto kPollInterval = 10ms;
// Of the host's time when the unit runs faster than the host.
constexpr auto kAcknowledgementLimit = 2s;
constexpr std::int64_t kNotReceived = -1;

const char* KindName(NamedKind kind) {
    switch (kind) {
        case NamedKind::kEvent:
            return "event";
        case NamedKind::kMutex:
            return "mutex";
        case NamedKind::kMessageQueue:
            return "queue";
        case NamedKind::kNone:
            break;
    }
    return "none";
}

std::optional<std::wstring> Given(const control::Values& values, const char* name) {
    if (!values.Has(name))
        return std::nullopt;
    return kernel::FromUtf8(values.Text(name));
}

OtherProcessWindow WindowIn(const control::Values& values) {
    return static_cast<OtherProcessWindow>(values.Number("CODE"));
}

}  // namespace

const std::vector<ControlServer::OwnCommand>& ControlServer::OwnCommands() {
    static const std::vector<OwnCommand> commands = {
        {"state", "Prints the complete state of the unit, as JSON.", &ControlServer::StartState},
        {"watch [frames|broadcasts|log|all] [--json]",
         "Prints events from now on, by default frames and broadcasts; with --json an object a "
         "line.",
         &ControlServer::StartWatch},
        {"run [FILE]", "Runs the scenario that is sent with the command.",
         &ControlServer::StartRun},
        {"help", "Lists the commands.", &ControlServer::StartHelp},
        {"complete [TEXT...]", "Lists the words that may follow those words, without placeholders.",
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
        for (const ScenarioTable::Row& row : RunRows())
            patterns.push_back(row.pattern);
        return control::Grammar(patterns);
    }();
    return grammar;
}

const ScenarioRows& ControlServer::RunRows() {
    static const ScenarioRows rows = [] {
        ScenarioRows all;
        for (const auto part : {CheckRows, PictureRows})
            std::ranges::move(part(), std::back_inserter(all));
        return all;
    }();
    return rows;
}

std::string ControlServer::OnlyInScenarios(const std::vector<std::string>& words) {
    static const auto grammar_of = [](const ScenarioRows& rows) {
        std::vector<std::string_view> patterns;
        for (const ScenarioTable::Row& row : rows)
            patterns.push_back(row.pattern);
        return control::Grammar(patterns);
    };
    static const control::Grammar settings = grammar_of(SettingRows());
    static const control::Grammar structure = grammar_of(StructureRows());
    std::string ignored;
    const std::string line = "'" + control::JoinWords(words) + "' ";
    if (settings.Read(words, ignored))
        return line + "applies when a unit starts, and this one runs already";
    if (structure.Read(words, ignored))
        return line + "is a line of scenario files only; unitctl run FILE runs such a file";
    return {};
}

void ControlServer::StartRunCommand(const Job& job) {
    if (!abilities_.run_command)
        return job.reply->End(Refused("this unit runs no scenarios"));
    std::string problem;
    auto scenario = ReadCommand(job.request.line, job.request.folder, problem);
    if (!scenario)
        return job.reply->End(control::Misused(problem));
    Post([this, job, scenario = *std::move(scenario)] {
        abilities_.run_command({scenario, job.reply});
    });
}

void ControlServer::Execute(const UnitTable::Row& row, const Job& job) {
    if (row.pattern == kRequestPattern)
        return RaiseRequest(row, job);
    if (row.pattern == kStepPattern &&
        operator_.unit().StepClock(
            [reply = job.reply](const TimedEvent& timed) { reply->End(Done(TraceRecord(timed))); }))
        return;
    const Outcome outcome = row.execute(operator_, job.values);
    if (outcome.later)
        return EndWhen(job.reply, outcome.later, kernel::kNever);
    if (!outcome.done || !operator_.busy())
        return job.reply->End(outcome);
    // A tap ends when the finger is up again.
    EndWhen(
        job.reply,
        [this, outcome] { return operator_.busy() ? std::nullopt : std::optional(outcome); },
        kernel::kNever);
}

void ControlServer::EndWhen(std::shared_ptr<Reply> reply,
                            std::function<std::optional<Outcome>()> done, kernel::Time deadline) {
    if (const std::optional<Outcome> outcome = done())
        return reply->End(*outcome);
    if (kernel::Now() >= deadline)
        return reply->End(Refused("no acknowledgement came within " +
                                  std::to_string(kAcknowledgementLimit.count()) + " s"));
    if (!reply->wanted())
        return;
    kernel::After(kPollInterval, [this, alive = alive_, reply = std::move(reply),
                                  done = std::move(done), deadline] {
        if (*alive)
            EndWhen(reply, done, deadline);
    });
}

void ControlServer::StartWatch(const Job& job) {
    const bool all = job.values.Chose("all");
    const bool log = all || job.values.Chose("log");
    const bool by_default = !job.values.Chose("frames") && !job.values.Chose("broadcasts") && !log;
    const bool frames = all || by_default || job.values.Chose("frames");
    const bool broadcasts = all || by_default || job.values.Chose("broadcasts");
    const auto wanted = [=](const Event& event) {
        if (std::holds_alternative<LineLogged>(event))
            return log;
        if (std::holds_alternative<LineEntry>(event) || std::holds_alternative<FaultApplied>(event))
            return frames;
        if (std::holds_alternative<BroadcastPosted>(event) ||
            std::holds_alternative<PowerRequested>(event))
            return broadcasts;
        return all && IsTraced(event);
    };
    watches_[job.client] = operator_.unit().events().Subscribe(
        [wanted, reply = job.reply,
         format = job.values.Chose("--json") ? EventJson : TraceRecord](const TimedEvent& timed) {
            if (wanted(timed.event))
                reply->Line(format(timed));
        });
}

void ControlServer::StartState(const Job& job) {
    if (!abilities_.state)
        return job.reply->End(Refused("this unit has no state to print"));
    Post([this, reply = job.reply] { reply->End(Done(abilities_.state())); });
}

void ControlServer::StartRun(const Job& job) {
    if (!abilities_.run)
        return job.reply->End(Refused("this unit runs no scenarios"));
    Post([this, job] {
        abilities_.run({job.values.Text("FILE"), job.request.text, job.request.folder, job.reply});
    });
}

void ControlServer::RaiseRequest(const UnitTable::Row& row, const Job& job) {
    const PowerRequest& request = PowerRequestIn(job.values);
    // Subscribed before the request is sent: the acknowledgement may come at once.
    const auto received = std::make_shared<std::atomic<std::int64_t>>(kNotReceived);
    const auto subscription =
        std::make_shared<EventHub::Subscription>(operator_.unit().events().Subscribe(
            [received, name = request.acknowledgement](const TimedEvent& timed) {
                const auto* const posted = std::get_if<BroadcastPosted>(&timed.event);
                if (posted && posted->name == name)
                    *received = timed.time.count();
            }));
    const Outcome raised = row.execute(operator_, job.values);
    if (!raised.done)
        return job.reply->End(raised);
    EndWhen(
        job.reply,
        [received, subscription, name = std::string(request.name)]() -> std::optional<Outcome> {
            if (*received == kNotReceived)
                return std::nullopt;
            return Done(TraceTime(std::chrono::microseconds(*received)) + "  " + name +
                        " acknowledged");
        },
        kernel::Now() + kAcknowledgementLimit * operator_.unit().time_scale());
}

void ControlServer::StartHelp(const Job& job) {
    const auto list = [&](std::string_view pattern, std::string_view help) {
        job.reply->Line(std::string(pattern) + "\n    " + std::string(help));
    };
    for (const OwnCommand& command : OwnCommands())
        list(command.pattern, command.help);
    for (const UnitTable::Row& row : UnitCommands().rows())
        list(row.pattern, row.help);
    for (const ScenarioTable::Row& row : RunRows())
        list(row.pattern, row.help);
    job.reply->End(Done());
}

void ControlServer::StartComplete(const Job& job) {
    std::string ignored;
    const auto words = control::SplitWords(job.values.Text("TEXT"), ignored);
    for (const std::string& word :
         AllCommands().NextWords(words.value_or(std::vector<std::string>())))
        job.reply->Line(word);
    job.reply->End(Done());
}

// The requests of another process are answered at once, even while the host thread is busy.

void ControlServer::StartFindObject(const Job& job) {
    const std::wstring name = kernel::FromUtf8(job.values.Text("NAME"));
    NamedKind kind = kernel::FindNamedKind(name);
    // Of two copies that start together, the one with the socket is the first, even before its
    // program has created the mutex.
    if (kind == NamedKind::kNone && operator_.unit().program().Starts(name))
        kind = NamedKind::kMutex;
    job.reply->End(Done(KindName(kind)));
}

void ControlServer::StartFindWindow(const Job& job) {
    const auto class_name = Given(job.values, "NAME");
    const auto title = Given(job.values, "TEXT");
    job.reply->End(Done(std::to_string(window::FindOwnWindow(class_name, title))));
}

void ControlServer::StartBringForward(const Job& job) {
    Post([this, job] {
        const bool came = window::BringOwnForward(WindowIn(job.values), job.values.Chose("owned"));
        if (came && abilities_.raise)
            abilities_.raise();
        job.reply->End(Done(came ? "yes" : "no"));
    });
}

}  // namespace unit
