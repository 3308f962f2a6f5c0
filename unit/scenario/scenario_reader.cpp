#include "unit/scenario/scenario_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "control/protocol.h"
#include "control/words.h"
#include "unit/scenario/language.h"

namespace unit {

namespace fs = std::filesystem;
using control::Done;
using control::Outcome;
using control::Refused;

namespace {

// Limits for a scenario with all its included files, so that no input uses unlimited memory or
// time.
constexpr std::size_t kMaxBytes = std::size_t{1024} * 1024;
constexpr std::size_t kMaxSteps = 100'000;
constexpr std::size_t kMaxProblems = 100;
// Some editors begin a UTF-8 file with it.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool SameFile(const std::string& one, const std::string& other) {
    return fs::path(one).lexically_normal() == fs::path(other).lexically_normal();
}

}  // namespace

void ScenarioReader::ReadFile(const std::string& file) {
    std::error_code ignored;
    const bool is_folder = fs::is_directory(file, ignored);
    std::ifstream stream(file);
    if (is_folder || !stream) {
        Complain(file + ": cannot be read: " + std::strerror(is_folder ? EISDIR : errno));
        return;
    }
    // One byte more than allowed, to detect a longer file.
    std::string text(kMaxBytes - bytes_ + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    ReadText(text, file);
}

void ScenarioReader::ReadText(std::string_view text, const std::string& file) {
    if (text.size() > kMaxBytes - bytes_) {
        Complain((places_.empty() ? file + ": " : "") + "too long; at most " +
                 std::to_string(kMaxBytes) + " bytes are allowed, including all included files");
        return;
    }
    bytes_ += text.size();
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    if (std::ranges::find(scenario_.sources, file, &ScenarioSource::file) ==
        scenario_.sources.end())
        scenario_.sources.push_back({file, std::string(text)});
    places_.push_back({file});
    for (std::size_t from = 0; from < text.size() && problems_.size() <= kMaxProblems;) {
        const std::size_t to = std::min(text.find('\n', from), text.size());
        ++places_.back().line;
        ReadLine(text.substr(from, to - from));
        from = to + 1;
    }
    places_.pop_back();
}

void ScenarioReader::Finish() {
    for (const Repeat& repeat : repeats_)
        if (problems_.size() < kMaxProblems)
            problems_.push_back(repeat.place + ": this repeat has no end");
    repeats_.clear();
}

std::string ScenarioReader::Here() const {
    return places_.back().file + ":" + std::to_string(places_.back().line);
}

void ScenarioReader::Complain(const std::string& problem) {
    const std::string line = places_.empty() ? problem : Here() + ": " + problem;
    // The errors of a file that is included twice are reported once.
    if (std::ranges::find(problems_, line) != problems_.end() || problems_.size() > kMaxProblems)
        return;
    problems_.push_back(problems_.size() < kMaxProblems
                            ? line
                            : Here() + ": more than " + std::to_string(kMaxProblems) +
                                  " problems; the rest is not reported");
}

void ScenarioReader::ReadLine(std::string_view line) {
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (!control::IsPlainText(line)) {
        Complain("the line is not plain UTF-8 text");
        return;
    }
    std::string problem;
    const auto words = control::SplitWords(line, problem);
    if (!words) {
        Complain(problem);
        return;
    }
    if (words->empty())
        return;
    auto command = ScenarioLanguage().Read(*words, problem);
    if (!command) {
        Complain(problem);
        return;
    }
    const std::string folder = fs::path(places_.back().file).parent_path().string();
    if (!folder.empty())
        command->values.ResolvePaths(folder);
    text_ = control::JoinWords(*words);
    const Outcome outcome = command->Execute(*this);
    if (!outcome.done)
        Complain(outcome.text);
}

Outcome ScenarioReader::Add(decltype(Step::action) action) {
    if (scenario_.steps.size() == kMaxSteps)
        return Refused("there are more than " + std::to_string(kMaxSteps) + " commands");
    scenario_.steps.push_back({places_.back().file, places_.back().line, text_, std::move(action)});
    return Done();
}

Outcome ScenarioReader::Set(const std::function<void(StartSettings&)>& set) {
    if (!scenario_.steps.empty())
        return Refused("'" + text_ + "' is a setting and must come before the first command");
    if (scenario_.first_setting.empty())
        scenario_.first_setting = Here() + ": " + text_;
    set(scenario_.settings);
    return Done();
}

Outcome ScenarioReader::Include(const std::string& file) {
    const bool reading = std::ranges::any_of(
        places_, [&](const Place& place) { return SameFile(place.file, file); });
    if (reading)
        return Refused(file + " includes itself");
    const std::size_t open = repeats_.size();
    ReadFile(file);
    if (repeats_.size() > open) {
        repeats_.resize(open);
        return Refused("a repeat in " + file + " has no end there");
    }
    return Done();
}

Outcome ScenarioReader::BeginRepeat(std::size_t count) {
    repeats_.push_back({scenario_.steps.size(), count, Here()});
    return Done();
}

Outcome ScenarioReader::EndRepeat() {
    if (repeats_.empty() || !repeats_.back().place.starts_with(places_.back().file + ":"))
        return Refused("there is no repeat to end here");
    const Repeat repeat = repeats_.back();
    repeats_.pop_back();
    auto& steps = scenario_.steps;
    const std::size_t count = steps.size() - repeat.begin;
    if (repeat.begin + count * repeat.count > kMaxSteps)
        return Refused("the repetitions make more than " + std::to_string(kMaxSteps) + " commands");
    if (count == 0 || repeat.count == 1)
        return Done();
    const std::vector<Step> body(steps.begin() + static_cast<std::ptrdiff_t>(repeat.begin),
                                 steps.end());
    for (std::size_t round = 1; round < repeat.count; ++round)
        steps.insert(steps.end(), body.begin(), body.end());
    return Done();
}

namespace {

std::optional<Scenario> Finished(ScenarioReader& reader, std::vector<std::string>& problems) {
    reader.Finish();
    problems.insert(problems.end(), reader.problems().begin(), reader.problems().end());
    if (!reader.problems().empty())
        return std::nullopt;
    return std::move(reader.scenario());
}

std::string NameOf(const std::string& file) {
    return fs::path(file).stem().string();
}

}  // namespace

std::optional<Scenario> LoadScenario(const std::string& file, std::vector<std::string>& problems) {
    ScenarioReader reader(NameOf(file));
    reader.ReadFile(file);
    return Finished(reader, problems);
}

std::optional<Scenario> ReadScenario(const std::string& text, const std::string& file,
                                     std::vector<std::string>& problems) {
    ScenarioReader reader(NameOf(file));
    reader.ReadText(text, file);
    return Finished(reader, problems);
}

std::optional<Scenario> ReadCommand(const std::string& line, const std::string& folder,
                                    std::string& problem) {
    const std::string file = folder.empty() ? "" : folder + "/";
    std::vector<std::string> problems;
    auto scenario = ReadScenario(line, file, problems);
    if (!scenario) {
        // The command has no place in a file.
        const std::string place = file + ":1: ";
        problem = problems.front();
        if (problem.starts_with(place))
            problem.erase(0, place.size());
        return std::nullopt;
    }
    scenario->name = "command";
    for (Step& step : scenario->steps)
        step.file.clear();
    return scenario;
}

}  // namespace unit
