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

// The settings with which the unit starts.
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

// A command that is complete at once.
struct Action {
    std::function<control::Outcome(ScenarioContext&)> execute;
};

struct Pause {
    std::chrono::microseconds time;
};

// A check of a condition.
struct Check {
    enum class Mode {
        kWait,        // true within `time`; an event after the one that the last wait found
        kExpect,      // true within `time`, which may be 0; an event since the beginning
        kThroughout,  // true, or no such event, from now on for `time`
    };

    const Condition* condition;
    control::Values values;
    bool wanted;  // false: the condition must not hold
    Mode mode;
    std::chrono::microseconds time;
};

// One line of a scenario.
struct Step {
    std::string file;  // empty for a single command
    int line;
    std::string text;
    std::variant<Action, Pause, Check> action;

    std::string Place() const { return file + ":" + std::to_string(line); }
};

// A file that a scenario was read from.
struct ScenarioSource {
    std::string file;
    std::string text;
};

// A scenario without errors.
struct Scenario {
    std::string name;  // of its file, without folder and ending
    StartSettings settings;
    // "FILE:LINE: seed 3" of the first of the settings; empty when there are none.
    std::string first_setting;
    std::vector<Step> steps;
    // Its own file, then each included file once.
    std::vector<ScenarioSource> sources;
};

// Reads a file, or a text as if it came from that file. Empty if anything is wrong, with a line for
// each error: "FILE:LINE: what is wrong; what is allowed". Any thread.
std::optional<Scenario> LoadScenario(const std::string& file, std::vector<std::string>& problems);
std::optional<Scenario> ReadScenario(const std::string& text, const std::string& file,
                                     std::vector<std::string>& problems);
// Reads a single command for a unit that runs. Relative paths start from the folder, unless it is
// empty. Empty, with one line in `problem`, for other words. Any thread.
std::optional<Scenario> ReadCommand(const std::string& line, const std::string& folder,
                                    std::string& problem);

}  // namespace unit
