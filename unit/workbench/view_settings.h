#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "unit/workbench/layout.h"

namespace unit {

enum class Theme { kDark, kLight };

// What the operator has chosen for the window, kept from one start of the command to the next.
struct ViewSettings {
    // The window's size in its units; 0: not known.
    int width = 0;
    int height = 0;
    // In the window's units; 0: not known.
    float dock_height = 0;
    Scaling scaling = Scaling::kSmooth;
    Theme theme = Theme::kDark;
    // Single letters act as keys.
    bool keys_act = false;
    // The first-run card was closed.
    bool introduced = false;
    // The groups by title, and whether each one is open; a group without entry is as at first.
    std::map<std::string, bool> groups;

    bool operator==(const ViewSettings&) const = default;
};

// The settings as lines of text, and back. Reading ignores what it does not understand and values
// out of range.
std::string SettingsText(const ViewSettings& settings);
ViewSettings ReadSettings(std::string_view text);

// $XDG_STATE_HOME/tolvane/workbench, by default below ~/.local/state; empty when neither variable
// is set.
std::filesystem::path SettingsFile();

// The settings at first when the file cannot be read.
ViewSettings LoadSettings(const std::filesystem::path& file);
// Replaces the file as a whole, so that a reader never finds a part. A folder that cannot be
// written costs only the settings: nothing is reported.
void SaveSettings(const std::filesystem::path& file, const ViewSettings& settings);

}  // namespace unit
