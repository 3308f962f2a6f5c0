#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/unit_harness/car_driver.h"

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
    // A command of the unit; empty when the window is closed. With SKIP it is a fault that strikes
    // once, after so many calls or bytes.
    std::string_view command;
};
std::span<const FaultKind> FaultKinds();

inline constexpr std::string_view kFails = "fails";
// From that call on, every call of its name fails: until the update is tried again, or also while
// the program is closed.
inline constexpr std::string_view kKeepsFailing = "keeps-failing";
inline constexpr std::string_view kFailsToTheEnd = "fails-to-the-end";
inline constexpr std::string_view kCloses = "closes";

struct Fault {
    const FaultKind* kind;
    Trigger trigger;
    std::uint64_t number;

    bool FailsCalls() const {
        return kind->name == kFails || kind->name == kKeepsFailing || kind->name == kFailsToTheEnd;
    }
};

// A flow and its faults as text: "normal fails@call:1341" or
// "no-version card-leaves@frame:12 closes@call:900". "#7" after the flow is the seed of the unit
// and the DVR, 1 without it.
struct Case {
    const Flow* flow;
    std::uint32_t seed = 1;
    std::vector<Fault> faults{};
};

std::string ToText(const Case& test_case);
// Throws std::invalid_argument with one line when the text is no case.
Case ParseCase(const std::string& text);

// The row of that name. Throws std::invalid_argument with one line that lists the names.
template <class Rows>
auto Named(const std::string& what, std::string_view name, const Rows& rows) {
    std::string names;
    for (const auto& row : rows) {
        if (row.name == name)
            return &row;
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    }
    throw std::invalid_argument("there is no " + what + " '" + std::string(name) +
                                "'; allowed is one of " + names);
}

// Those rows, or all when there are no names.
template <class Rows>
auto Chosen(const std::string& what, const std::vector<std::string>& names, const Rows& rows) {
    std::vector<decltype(&rows[0])> chosen;
    for (const std::string& name : names)
        chosen.push_back(Named(what, name, rows));
    if (names.empty())
        for (const auto& row : rows)
            chosen.push_back(&row);
    return chosen;
}

}  // namespace tests::campaign
