#include "unit/scenario/scenario_run.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <utility>

#include "unit/picture/picture.h"
#include "unit/state/unit_state.h"

namespace unit {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

namespace {

constexpr auto kPollInterval = 5ms;
// How many events a failure message shows.
constexpr std::size_t kShownEvents = 3;

std::string Seconds(kernel::Duration time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g s", static_cast<double>(time.count()) / 1e6);
    return text;
}

std::string PlaceText(const Step& step) {
    return (step.file.empty() ? "" : step.Place() + ": ") + step.text + ": ";
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

constexpr char kFailureFile[] = "failure.txt";

bool IsOfReport(std::string_view name) {
    for (const std::string_view own :
         {kFailureFile, "state.json", "debug.log", "events.log", "screen.png"})
        if (name == own)
            return true;
    return name.ends_with("-actual.png") || name.ends_with("-expected.png") ||
           name.ends_with("-difference.png");
}

bool WriteText(const std::string& path, const std::string& text, std::string& problem) {
    errno = 0;
    std::ofstream stream(path);
    stream << text;
    stream.close();
    if (stream)
        return true;
    problem = path + ": " + std::strerror(errno);
    return false;
}

// The report of an earlier run that failed. Files of others stay, and their folder.
void RemoveReport(const std::filesystem::path& folder) {
    std::error_code error;
    if (!std::filesystem::exists(folder / kFailureFile, error))
        return;
    for (const auto& file : std::filesystem::directory_iterator(folder, error))
        if (IsOfReport(file.path().filename().string()))
            std::filesystem::remove(file.path(), error);
    std::filesystem::remove(folder, error);
}

}  // namespace

ScenarioRun::ScenarioRun(Operator& op, Scenario scenario, RunOptions options,
                         std::shared_ptr<EventMemory> memory)
    : options_(std::move(options)),
      scenario_(std::move(scenario)),
      context_{op, options_, options_.out.empty() ? "" : options_.out + "/" + scenario_.name,
               memory ? std::move(memory) : std::make_shared<EventMemory>(op.unit().events())},
      // A unit that runs faster than the host is not polled more often.
      poll_interval_(kPollInterval * op.unit().time_scale()) {}

ScenarioRun::~ScenarioRun() {
    kernel::Cancel(next_poll_);
}

void ScenarioRun::Start() {
    started_ = kernel::Now();
    PollIn({});
}

void ScenarioRun::Stop(const std::string& why) {
    if (!finished_)
        Fail(why);
}

kernel::Duration ScenarioRun::duration() const {
    return (finished_ ? ended_ : kernel::Now()) - started_;
}

void ScenarioRun::PollIn(kernel::Duration time) {
    next_poll_ = kernel::After(time, [this] { Poll(); });
}

void ScenarioRun::Poll() {
    if (context_.memory->events.full())
        return Fail("the run has more than " + std::to_string(context_.memory->events.limit()) +
                    " events, the limit for a scenario");
    // A tap ends by itself; the next command begins after that.
    while (!finished_ && !context_.op.busy()) {
        if (position_ == scenario_.steps.size()) {
            Finish();
            return;
        }
        const Step& step = scenario_.steps[position_];
        if (!progress_)
            Begin(step);
        const Verdict verdict =
            std::visit([this](const auto& action) { return Proceed(action); }, step.action);
        if (verdict == Verdict::kFailed)
            Fail(why_);
        if (verdict != Verdict::kDone)
            break;
        progress_.reset();
        ++position_;
    }
    if (!finished_)
        PollIn(poll_interval_);
}

void ScenarioRun::Begin(const Step& step) {
    options_.began(step);
    options_.trace(step.text);
    progress_ = Progress{kernel::Now(), 0, 0};
    const Check* const check = std::get_if<Check>(&step.action);
    if (!check || check->condition->IsState())
        return;
    progress_->next_event = check->mode == Check::Mode::kWait
                                ? context_.memory->next_wait[check->condition->kind]
                            : check->mode == Check::Mode::kExpect ? context_.memory->begin
                                                                  : context_.memory->events.Count();
}

ScenarioRun::Verdict ScenarioRun::Proceed(const Action& action) {
    const control::Outcome outcome = action.execute(context_);
    why_ = outcome.text;
    if (!outcome.done)
        return Verdict::kFailed;
    if (!outcome.text.empty())
        options_.trace("  " + outcome.text);
    return Verdict::kDone;
}

ScenarioRun::Verdict ScenarioRun::Proceed(const Pause& pause) {
    return kernel::Now() - progress_->began >= pause.time ? Verdict::kDone : Verdict::kNotYet;
}

ScenarioRun::Verdict ScenarioRun::Proceed(const Check& check) {
    const kernel::Duration passed = kernel::Now() - progress_->began;
    const bool as_wanted = Holds(check) == check.wanted;
    if (check.mode == Check::Mode::kThroughout) {
        if (as_wanted)
            return passed >= check.time ? Verdict::kDone : Verdict::kNotYet;
        why_ = (check.wanted ? "no longer true after " : "true after ") + Seconds(passed);
    } else if (as_wanted) {
        if (check.mode == Check::Mode::kWait && !check.condition->IsState())
            context_.memory->next_wait[check.condition->kind] = progress_->next_event;
        return Verdict::kDone;
    } else if (passed < check.time * context_.op.unit().time_scale()) {
        return Verdict::kNotYet;
    } else if (check.time == kernel::Duration{}) {
        why_ = check.wanted ? "not true" : "true";
    } else {
        why_ = (check.wanted ? "not true within " : "still true after ") + Seconds(check.time);
    }
    why_ += Actual(check);
    return Verdict::kFailed;
}

bool ScenarioRun::Holds(const Check& check) {
    if (check.condition->IsState())
        return check.condition->holds(context_, check.values);
    const std::int64_t wanted = check.values.Number("COUNT", 1);
    const auto matches = [&](const Event& event) {
        return check.condition->matches(event, check.values);
    };
    while (progress_->found < wanted) {
        const auto at = context_.memory->events.Find(progress_->next_event, matches);
        if (!at) {
            progress_->next_event = context_.memory->events.Count();
            return false;
        }
        progress_->next_event = *at + 1;
        ++progress_->found;
    }
    return true;
}

std::string ScenarioRun::Actual(const Check& check) {
    if (check.condition->actual)
        return "; " + check.condition->actual(context_);
    if (check.condition->IsState())
        return {};
    std::string text = check.values.Has("COUNT")
                           ? "; it happened " + std::to_string(progress_->found) + " times"
                           : std::string();
    text += "; the latest events of its kind:";
    for (const std::string& line : context_.memory->events.Latest(
             kShownEvents,
             [&](const Event& event) { return event.index() == check.condition->kind; }))
        text += "\n    " + line;
    return text;
}

void ScenarioRun::Finish() {
    finished_ = true;
    ended_ = kernel::Now();
    if (problem_.empty() && !context_.out.empty())
        RemoveReport(context_.out);
}

void ScenarioRun::Fail(const std::string& why) {
    if (!scenario_.steps.empty())
        failed_step_ = &scenario_.steps[std::min(position_, scenario_.steps.size() - 1)];
    problem_ = (failed_step_ ? PlaceText(*failed_step_) : std::string()) + why +
               "\n    on the screen: " + context_.op.TextsOnScreen();
    Finish();
    if (!context_.out.empty())
        problem_ += "\n    " + SaveReport();
}

// Saves the message with the seed, the unit's state, the screen, the debug output and the events.
// Returns one line: where they are, or why they could not be saved.
std::string ScenarioRun::SaveReport() {
    const std::string& out = context_.out;
    std::error_code error;
    std::filesystem::create_directories(out, error);
    if (error)
        return out + ": " + error.message();
    const auto events = [this](const std::function<bool(const Event&)>& matches) {
        return Joined(
            context_.memory->events.Latest(std::numeric_limits<std::size_t>::max(), matches));
    };
    VirtualUnit& unit = context_.op.unit();
    const std::string seed = "seed " + std::to_string(options_.seed);
    const std::pair<const char*, std::string> files[] = {
        {kFailureFile, problem_ + "\n" + seed + "\n"},
        {"state.json", StateJson(unit) + "\n"},
        {"debug.log",
         events([](const Event& event) { return std::holds_alternative<LineLogged>(event); })},
        {"events.log", events([](const Event&) { return true; })},
    };
    std::string problem;
    for (const auto& [name, text] : files)
        if (!WriteText(out + "/" + name, text, problem))
            return problem;
    if (!WritePng(unit.TakePicture(), out + "/screen.png", problem))
        return problem;
    return seed + "; saved in " + out +
           ": failure.txt, state.json, screen.png, debug.log, events.log";
}

}  // namespace unit
