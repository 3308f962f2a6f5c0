#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/campaign/road.h"

namespace tests::campaign {

// Where on a road something goes wrong, counted from 1.
enum class Moment {
    kCall,   // just before the program's call of that number
    kFrame,  // with the last byte of the DVR's frame of that number
    kByte,   // with the byte of that number from the DVR; for faults of the line alone
};

struct FaultKind;

struct Fault {
    const FaultKind* kind;
    Moment moment;
    std::uint64_t number;
};

// One trial of the campaign, which one text tells: the road and what goes wrong on it, such as
// "normal fails@call:1341" or "no-version card-leaves@frame:12 closes@call:900". "#7" behind the
// road is the seed of the unit and of the DVR, 1 without it.
struct Case {
    const Road* road;
    std::uint32_t seed = 1;
    std::vector<Fault> faults;
};

std::string ToText(const Case& trial);
// Nothing, with one line in `problem`, for a text that tells no case.
std::optional<Case> ParseCase(std::string_view text, std::string& problem);

// What can go wrong.
struct FaultKind {
    std::string_view name;
    // The moments that it can come at.
    bool at_calls;
    bool at_frames;
    bool at_bytes;
    // Lets it come; on the hardware's thread. Null for a call that fails.
    void (*strike)(WizardRun& run);
    // For a fault of a byte on the line: the rule, for one byte.
    std::string_view line_rule{};
};

std::span<const FaultKind> FaultKinds();
bool Fits(const FaultKind& kind, Moment moment);

inline constexpr std::string_view kFails = "fails";
inline constexpr std::string_view kCloses = "closes";

}  // namespace tests::campaign
