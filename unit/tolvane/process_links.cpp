#include "unit/tolvane/process_links.h"

#include <cstdio>

#include "unit/state/unit_state.h"

namespace unit {

namespace kernel = platform::kernel;
using control::Done;
using control::Refused;

namespace {

constexpr std::chrono::milliseconds kPollInterval{10};
// A unit may run for weeks; a scenario does not.
constexpr std::size_t kRememberedEvents = 100'000;

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

}  // namespace

SentScenarios::~SentScenarios() {
    kernel::Cancel(next_poll_);
}

void SentScenarios::Run(const SentScenario& sent) {
    if (run_)
        return sent.reply->End(Refused("the unit already runs the scenario " +
                                       run_->scenario().name + "; allowed is one at a time"));
    std::vector<std::string> problems;
    auto scenario = ReadScenario(sent.text, sent.file.empty() ? "scenario" : sent.file, problems);
    if (!scenario)
        return sent.reply->End(Refused(Joined(problems)));
    if (!scenario->first_setting.empty())
        return sent.reply->End(Refused(scenario->first_setting +
                                       ": applies when a unit starts, and this one runs already"));
    reply_ = sent.reply;
    RunOptions options = options_;
    const auto print = [reply = reply_](const std::string& line) { reply->Line(line); };
    options.say = print;
    options.trace = [print](const std::string& command) { print("> " + command); };
    run_.emplace(operator_, std::move(*scenario), std::move(options));
    run_->Start();
    Poll();
}

void SentScenarios::Poll() {
    if (!reply_->wanted())
        run_->Stop("its sender has gone");
    if (run_->finished())
        return End();
    next_poll_ = kernel::After(kPollInterval * operator_.unit().time_scale(), [this] { Poll(); });
}

void SentScenarios::End() {
    char time[32];
    std::snprintf(time, sizeof time, "%.1f s", static_cast<double>(run_->duration().count()) / 1e6);
    reply_->End(run_->passed() ? Done(run_->scenario().name + ": passed, " + time + " of unit time")
                               : Refused(run_->problem()));
    run_.reset();
    reply_.reset();
}

SentCommands::SentCommands(Operator& op, RunOptions options)
    : operator_(op), options_(std::move(options)), memory_(NewMemory()) {}

SentCommands::~SentCommands() {
    for (const Active& active : active_)
        kernel::Cancel(active.next_poll);
}

std::shared_ptr<EventMemory> SentCommands::NewMemory() const {
    return std::make_shared<EventMemory>(operator_.unit().events(), kRememberedEvents);
}

void SentCommands::Run(SentCommand sent) {
    if (memory_->events.full()) {
        sent.reply->Line("the events before this command are forgotten; at most " +
                         std::to_string(kRememberedEvents) + " are remembered");
        memory_ = NewMemory();
    }
    RunOptions options = options_;
    // A command that fails is reported to its sender only.
    options.out.clear();
    options.say = [reply = sent.reply](const std::string& line) { reply->Line(line); };
    options.trace = [](const std::string&) {};
    const auto active = active_.emplace(active_.end(), operator_, std::move(sent.scenario),
                                        std::move(options), memory_, sent.reply);
    active->run.Start();
    Poll(active);
}

void SentCommands::Poll(std::list<Active>::iterator active) {
    if (!active->reply->wanted())
        active->run.Stop("its sender has gone");
    if (active->run.finished()) {
        active->reply->End(active->run.passed() ? Done() : Refused(active->run.problem()));
        active_.erase(active);
        return;
    }
    active->next_poll = kernel::After(kPollInterval * operator_.unit().time_scale(),
                                      [this, active] { Poll(active); });
}

ProcessLinks::ProcessLinks(Operator& op, const std::string& name, RunOptions sent)
    : scenarios_(op, sent),
      commands_(op, std::move(sent)),
      control_(op, name,
               {.state = [&unit = op.unit()] { return StateJson(unit); },
                .run = [this](const SentScenario& scenario) { scenarios_.Run(scenario); },
                .run_command = [this](SentCommand command) { commands_.Run(std::move(command)); },
                .raise =
                    [this] {
                        if (raise_)
                            raise_();
                    }},
               [&unit = op.unit()](const std::string& line) { unit.Say(line); }),
      first_(std::make_shared<FirstUnit>(
          name, [this] { return !control_.taken(); },
          [&unit = op.unit()] {
              unit.Say("another unit runs already; its window was brought forward");
          })) {
    op.unit().SetOtherProcesses(first_);
}

}  // namespace unit
