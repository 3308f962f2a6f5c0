#include "unit/workbench/keys.h"

#include <algorithm>

namespace unit {
namespace {

bool CardIn(Desk& desk) {
    const dvrsim::Dvr* const dvr = desk.unit.dvr().dvr();
    return dvr && dvr->CardIn();
}

std::string Card(Desk& desk) {
    return CardIn(desk) ? "card out" : "card in";
}
std::string Power(Desk& desk) {
    return desk.unit.external_power() ? "power off" : "power on";
}
std::string Plug(Desk& desk) {
    return desk.unit.dvr().plugged() ? "line unplug" : "line plug";
}
std::string Reset(Desk&) {
    return "dvr reset";
}
std::string Wake(Desk&) {
    return "wake";
}
std::string Suspend(Desk&) {
    return "request suspend";
}
std::string Resume(Desk&) {
    return "request resume";
}
std::string PowerOff(Desk&) {
    return "request off";
}
std::string Screenshot(Desk&) {
    return "screenshot tolvane.png";
}

void SwitchScaling(Desk& desk) {
    desk.scaling = desk.scaling == Scaling::kWhole ? Scaling::kSmooth : Scaling::kWhole;
}
void SwitchFullScreen(Desk& desk) {
    desk.full_screen = !desk.full_screen;
}
void LeaveFullScreen(Desk& desk) {
    desk.full_screen = false;
}
void FocusCommandLine(Desk& desk) {
    desk.focus_command_line = true;
}

}  // namespace

const std::vector<KeyRow>& Keys() {
    static const std::vector<KeyRow> rows = {
        {SDLK_c, "C", "SD card in or out", Card, nullptr},
        {SDLK_e, "E", "external power on or off", Power, nullptr},
        {SDLK_d, "D", "DVR's serial plug out or in", Plug, nullptr},
        {SDLK_r, "R", "reset the DVR", Reset, nullptr},
        {SDLK_w, "W", "wake the suspended unit", Wake, nullptr},
        {SDLK_s, "S", "ask all applications to suspend", Suspend, nullptr},
        {SDLK_u, "U", "tell all applications to resume", Resume, nullptr},
        {SDLK_o, "O", "ask all applications to power off", PowerOff, nullptr},
        {SDLK_p, "P", "picture of the unit's screen to tolvane.png", Screenshot, nullptr},
        {SDLK_RETURN, "Enter", "type a command", nullptr, FocusCommandLine},
        {SDLK_F10, "F10", "scale by whole or smooth factors", nullptr, SwitchScaling},
        {SDLK_F11, "F11", "the unit's screen alone, and back", nullptr, SwitchFullScreen},
        {SDLK_ESCAPE, "Esc", "back from the screen alone", nullptr, LeaveFullScreen},
    };
    return rows;
}

bool FollowKey(Desk& desk, SDL_Keycode key) {
    const auto row = std::ranges::find(Keys(), key, &KeyRow::key);
    if (row == Keys().end())
        return false;
    if (row->command)
        desk.commands.Follow(row->command(desk));
    else
        row->act(desk);
    return true;
}

std::string KeyOf(Desk& desk, const std::string& command) {
    for (const KeyRow& row : Keys())
        if (row.command && row.command(desk) == command)
            return row.name;
    return {};
}

}  // namespace unit
