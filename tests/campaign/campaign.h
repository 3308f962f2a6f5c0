#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/unit_harness/car_driver.h"

// Faults at every trigger of each flow through the wizard.
namespace tests::campaign {

// A sequence of steps through the wizard, with what is wrong from the beginning.
struct Flow {
    std::string_view name;
    // How the flow ends when nothing else goes wrong.
    CarDriver::End end;
    // A scenario: the unit's settings, and commands for the start.
    std::string begin{};
    // Commands for the time when the screen shows a percent.
    std::string halfway{};
    // A quick update instead of one of usual length.
    bool quick = true;
    bool first_card_is_empty = false;
};
std::span<const Flow> Flows();

// An update of half a minute with few reports.
inline constexpr char kQuickUpdate[] = "dvr update-time 30s\nfault dvr jump-back 3 96";
// No drive takes longer, whatever fails.
inline constexpr std::chrono::seconds kLongestDrive{400};

// Sets the flow up and drives it to its end; empty when the program ended before or none was found.
std::optional<CarDriver::End> RunFlow(const Flow& flow, WizardRun& run, CarDriver& driver);

// When a fault is injected, counted from 1: just before the program's call of that number, with
// the last byte of the DVR's frame of that number, or with a byte from the DVR.
enum Trigger : std::size_t { kCall, kFrame, kByte, kTriggers };
// How many of each a flow has.
using Counts = std::array<std::uint64_t, kTriggers>;

struct FaultKind {
    std::string_view name;
    // It can be injected at this trigger and those before it.
    Trigger last;
    // A command of the unit; empty when the window is closed. With SKIP it is a fault that occurs
    // once, after so many calls or bytes.
    std::string_view command;

    bool FailsCalls() const { return command.starts_with("fault any-call"); }
};
std::span<const FaultKind> FaultKinds();

inline constexpr std::string_view kFails = "fails";
// From that call on, every call of its name fails, also while the program is closed;
// "keeps-failing" is the same until the update is tried again.
inline constexpr std::string_view kFailsToTheEnd = "fails-to-the-end";
inline constexpr std::string_view kCloses = "closes";

struct Fault {
    const FaultKind* kind;
    Trigger trigger;
    std::uint64_t number;
};

// A flow and its faults as text: "normal fails@call:1341" or
// "no-version card-leaves@frame:12 closes@call:900".
struct Case {
    const Flow* flow;
    std::vector<Fault> faults{};
    std::uint32_t seed = 1;  // of the unit and the DVR; not in the text
};
std::string ToText(const Case& test_case);
// Throws std::invalid_argument with one line when the text is no case.
Case ParseCase(const std::string& text);

// The row of that name. Throws std::invalid_argument with one line that lists the names.
template <class Rows>
auto Named(std::string_view name, const Rows& rows) {
    std::string names;
    for (const auto& row : rows) {
        if (row.name == name)
            return &row;
        names += " " + std::string(row.name);
    }
    throw std::invalid_argument("'" + std::string(name) + "' is none of" + names);
}

// The rows of those names, or all when there are none.
template <class Rows>
auto Chosen(const std::vector<std::string>& names, const Rows& rows) {
    std::vector<decltype(&rows[0])> chosen;
    for (const std::string& name : names)
        chosen.push_back(Named(name, rows));
    if (names.empty())
        for (const auto& row : rows)
            chosen.push_back(&row);
    return chosen;
}

struct Result {
    // What must not happen, a line each; empty when the case passed.
    std::vector<std::string> findings{};
    // How many of the case's faults were injected: one may keep the trigger of another from coming.
    std::size_t injected = 0;
    // How often external power was cycled until the update was complete; 0 when the program was
    // closed before.
    std::size_t cycles = 0;
    // The program had to be started again: a part of it failed to start, which it tries only once.
    bool reopened = false;
    // How many of each trigger the flow had in this run.
    Counts counts{};
};

// Runs one case in simulated time: the flow with its faults; then, unless the program was closed,
// external power off and on with a healthy DVR and unit, and a whole update; then the end. `log`
// gets the debug output. What fails may be left behind in this process.
Result RunCase(const Case& test_case, std::vector<std::string>* log = nullptr);

// A flow without faults.
struct Baseline {
    const Flow* flow;
    Result result;
};
std::vector<Baseline> MeasureBaselines(const std::vector<const Flow*>& flows);

// Each kind at each `every`-th trigger of each sort that it fits, from a first one that the seed
// chooses.
std::vector<Case> Sweep(const std::vector<Baseline>& baselines,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        std::uint32_t seed);
// So many cases with so many faults each: the flows and the kinds of their first faults in turn,
// the other kinds and the triggers as the seed chooses.
std::vector<Case> Sample(const std::vector<Baseline>& baselines,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed);

}  // namespace tests::campaign
