#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/campaign/flow.h"

namespace tests::campaign {

// Where on a flow something goes wrong, counted from 1: just before the program's call of that
// number, with the last byte of the DVR's frame of that number, or with a byte from the DVR.
enum Trigger : std::size_t { kCall, kFrame, kByte, kTriggers };
// How many a flow has of each.
using Counts = std::array<std::uint64_t, kTriggers>;

// What can go wrong.
struct FaultKind {
    std::string_view name;
    // It can come at this trigger and those before it.
    Trigger last;
    // What is done to the unit: one of its commands; empty when the window is closed.
    std::string_view command;
    // Whether the command is a fault that strikes once, and counts what it does not strike.
    bool counts = false;
};
std::span<const FaultKind> FaultKinds();

inline constexpr std::string_view kFails = "fails";
inline constexpr std::string_view kCloses = "closes";

struct Fault {
    const FaultKind* kind;
    Trigger trigger;
    std::uint64_t number;
};

// One trial of the campaign, which one text tells: the flow and what goes wrong on it, such as
// "normal fails@call:1341" or "no-version card-leaves@frame:12 closes@call:900". "#7" behind the
// flow is the seed of the unit and of the DVR, 1 without it.
struct Case {
    const Flow* flow;
    std::uint32_t seed = 1;
    std::vector<Fault> faults;
};

std::string ToText(const Case& trial);
// Throws std::invalid_argument, with one line, for a text that tells no case.
Case ParseCase(const std::string& text);

// The row of that name. Throws std::invalid_argument, with one line that says which there are.
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

}  // namespace tests::campaign
