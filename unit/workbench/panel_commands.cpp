#include "unit/workbench/panel_commands.h"

#include <algorithm>

#include "control/words.h"
#include "platform/kernel/scheduler.h"
#include "unit/workbench/panel_context.h"

namespace unit {
namespace {

constexpr std::size_t kMaxEntries = 500;

std::string MoveCard(PanelContext& context) {
    const dvrsim::Dvr* const dvr = context.unit.dvr().dvr();
    return dvr && dvr->CardIn() ? "card out" : "card in";
}
std::string SwitchPower(PanelContext& context) {
    return context.unit.external_power() ? "power off" : "power on";
}
std::string MovePlug(PanelContext& context) {
    return context.unit.dvr().plugged() ? "line unplug" : "line plug";
}

}  // namespace

void CommandRunner::Execute(const std::string& line) {
    control::Outcome outcome = table_.Execute(operator_, line);
    entries_.push_back({platform::kernel::Now(), line, outcome.done, std::move(outcome.text)});
    if (entries_.size() > kMaxEntries)
        entries_.pop_front();
}

bool CommandRunner::Knows(const std::string& line) {
    const auto [entry, is_new] = known_.try_emplace(line);
    if (is_new)
        entry->second = !HelpOf(line).empty();
    return entry->second;
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
    const std::size_t space = line.find_last_of(' ');
    const std::string begun = space == std::string::npos ? line : line.substr(space + 1);
    std::string problem;
    const auto words = control::SplitWords(line.substr(0, line.size() - begun.size()), problem);
    std::vector<std::string> matches;
    if (!words)
        return matches;
    for (std::string& word : table_.grammar().NextWords(*words))
        if (word.starts_with(begun))
            matches.push_back(std::move(word));
    return matches;
}

const std::vector<KeyRow>& Keys() {
    static const std::vector<KeyRow> rows = {
        {SDLK_c, "C", "insert or remove the SD card", MoveCard, nullptr},
        {SDLK_e, "E", "switch external power on or off", SwitchPower, nullptr},
        {SDLK_d, "D", "plug or unplug the DVR's serial line", MovePlug, nullptr},
        {SDLK_r, "R", "reset the DVR", [](PanelContext&) -> std::string { return "dvr reset"; },
         nullptr},
        {SDLK_w, "W", "wake the suspended unit",
         [](PanelContext&) -> std::string { return "wake"; }, nullptr},
        {SDLK_s, "S", "ask all applications to suspend",
         [](PanelContext&) -> std::string { return "request suspend"; }, nullptr},
        {SDLK_u, "U", "ask all applications to resume",
         [](PanelContext&) -> std::string { return "request resume"; }, nullptr},
        {SDLK_o, "O", "ask all applications to power off",
         [](PanelContext&) -> std::string { return "request off"; }, nullptr},
        {SDLK_p, "P", "save the unit's screen as tolvane.png",
         [](PanelContext&) -> std::string { return "screenshot tolvane.png"; }, nullptr},
        {SDLK_SPACE, "Space", "pause the unit's time, or resume it",
         [](PanelContext&) -> std::string {
             return platform::kernel::ClockPaused() ? "clock resume" : "clock pause";
         },
         nullptr},
        {SDLK_n, "N", "let time run to the next event",
         [](PanelContext&) -> std::string { return "clock step"; }, nullptr},
        {SDLK_RETURN, "Enter", "type a command", nullptr,
         [](PanelContext& context) { context.focus_command_line = true; }},
        {SDLK_F1, "F1", "show the screen's texts in English", nullptr,
         [](PanelContext& context) { context.shows_glosses = !context.shows_glosses; }},
        {SDLK_F10, "F10", "scale by whole or smooth factors", nullptr,
         [](PanelContext& context) {
             context.view.scaling =
                 context.view.scaling == Scaling::kWhole ? Scaling::kSmooth : Scaling::kWhole;
         }},
        {SDLK_F11, "F11", "show only the unit's screen, or all", nullptr,
         [](PanelContext& context) { context.full_screen = !context.full_screen; }},
        {SDLK_ESCAPE, "Esc", "leave the full screen", nullptr,
         [](PanelContext& context) { context.full_screen = false; }},
    };
    return rows;
}

void PressKey(PanelContext& context, SDL_Keycode key) {
    const auto row = std::ranges::find(Keys(), key, &KeyRow::key);
    if (row == Keys().end())
        return;
    if (!row->command)
        row->act(context);
    else if (context.view.keys_act)
        context.commands.Execute(row->command(context));
}

std::string KeyOf(PanelContext& context, const std::string& command) {
    for (const KeyRow& row : Keys())
        if (context.view.keys_act && row.command && row.command(context) == command)
            return row.name;
    return {};
}

}  // namespace unit
