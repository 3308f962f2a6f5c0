#pragma once

#include <SDL.h>

#include <string>
#include <vector>

#include "unit/workbench/desk.h"

namespace unit {

// A key and what it does, while no text field has the keyboard.
struct KeyRow {
    SDL_Keycode key;
    const char* name;
    const char* does;
    // The command that the key stands for now; null for a key of the window itself.
    std::string (*command)(Desk& desk);
    // What it does to the window; null for a key with a command.
    void (*act)(Desk& desk);
};

const std::vector<KeyRow>& Keys();

// Does what the key stands for; false when it stands for nothing.
bool FollowKey(Desk& desk, SDL_Keycode key);

// The name of the key that stands for the command now ("C"); empty when none does.
std::string KeyOf(Desk& desk, const std::string& command);

}  // namespace unit
