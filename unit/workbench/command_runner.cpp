#include "unit/workbench/command_runner.h"

#include "control/words.h"
#include "platform/kernel/clock.h"

namespace unit {
namespace {

constexpr std::size_t kMost = 500;

}  // namespace

void CommandRunner::Follow(const std::string& line) {
    control::Outcome outcome = table_.Execute(operator_, line);
    entries_.push_back({platform::kernel::Now(), line, outcome.done, std::move(outcome.text)});
    if (entries_.size() > kMost)
        entries_.pop_front();
}

bool CommandRunner::Knows(const std::string& line) {
    const auto [answer, is_new] = asked_.try_emplace(line);
    if (is_new)
        answer->second = !HelpOf(line).empty();
    return answer->second;
}

std::string CommandRunner::HelpOf(const std::string& line) const {
    std::string problem;
    const auto words = control::SplitWords(line, problem);
    if (!words)
        return {};
    const auto command = table_.Read(*words, problem);
    return command ? std::string(command->row->help) : std::string();
}

std::vector<std::string> CommandRunner::Complete(const std::string& line) const {
    const std::size_t blank = line.find_last_of(' ');
    const std::string begun = blank == std::string::npos ? line : line.substr(blank + 1);
    std::string problem;
    const auto words = control::SplitWords(line.substr(0, line.size() - begun.size()), problem);
    std::vector<std::string> fitting;
    if (!words)
        return fitting;
    for (std::string& word : table_.grammar().NextWords(*words))
        if (word.starts_with(begun))
            fitting.push_back(std::move(word));
    return fitting;
}

}  // namespace unit
