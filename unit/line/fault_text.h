#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "control/words.h"
#include "unit/line/fault_rule.h"

namespace unit {

// How a fault rule is written:
//
//     corrupt checksum of FW_Upgrade_Version indications to-unit
//     drop bytes chance 1 seed 7
//     delay 300ms StorageCardStatus acknowledgements
//     inject 00A55A before indications
//
struct FaultPattern {
    std::string_view pattern;  // for control::Grammar
    std::string_view help;
};
std::span<const FaultPattern> FaultPatterns();

// The rule that a line of one of the patterns stands for. Empty with one line in `problem` when it
// makes no sense.
std::optional<FaultRule> ReadFaultRule(const control::Values& values, std::string& problem);

// Reads the whole text, and says likewise what is wrong with it.
std::optional<FaultRule> ParseFaultRule(std::string_view text, std::string& problem);

// The text that ParseFaultRule reads as this rule.
std::string ToText(const FaultRule& rule);

}  // namespace unit
