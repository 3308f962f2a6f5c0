#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "control/command_table.h"
#include "unit/board/virtual_unit.h"
#include "unit/scenario/conditions.h"

namespace unit {

// What holds for the unit from its start on.
struct StartSettings {
    std::optional<std::uint32_t> seed;
    std::optional<platform::kernel::Mode> mode;
    std::optional<double> speed;  // free running
    bool preempt = false;
    bool waiting_repaints = false;
    bool external_power = true;
    std::vector<std::wstring> missing_drivers;
    std::vector<WORD> missing_bitmaps;
    std::optional<std::string> firmware;

    void ApplyTo(VirtualUnit::Options& options) const;
};

// A command that is done at once.
struct Act {
    std::function<control::Outcome(Stage&)> follow;
};

struct Pause {
    std::chrono::microseconds time;
};

// A condition that is looked at.
struct Check {
    enum class Manner {
        kWait,        // comes within `time`; a happening is looked for behind the last wait's
        kExpect,      // is so within `time`, which may be none; a happening since the beginning
        kThroughout,  // is so, or does not happen, from now on for `time`
    };

    const Condition* condition;
    control::Values values;
    bool wanted;  // false: it must not be so
    Manner manner;
    std::chrono::microseconds time;
};

// One line of a scenario.
struct Step {
    std::string file;
    int line;
    std::string text;
    std::variant<Act, Pause, Check> deed;

    std::string Place() const { return file + ":" + std::to_string(line); }
};

// A scenario that was read and found in order.
struct Scenario {
    std::string name;  // of its file, without folder and ending
    StartSettings settings;
    // "FILE:LINE: seed 3" of the first of the settings; empty when there are none.
    std::string first_setting;
    std::vector<Step> steps;
};

// Reads a file, or a text as if it came from that file. Empty with a line for each thing that is
// wrong: "FILE:LINE: what, and what is allowed". Any thread.
std::optional<Scenario> LoadScenario(const std::string& file, std::vector<std::string>& problems);
std::optional<Scenario> ReadScenario(const std::string& text, const std::string& file,
                                     std::vector<std::string>& problems);

}  // namespace unit
