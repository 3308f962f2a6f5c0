#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "control/words.h"
#include "unit/line/fault_rule.h"

namespace unit {

// The syntax of fault rules:
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

// Reads the rule from a line that matches one of the patterns. Empty, with one line in `problem`,
// when the rule is meaningless.
std::optional<FaultRule> ReadFaultRule(const control::Values& values, std::string& problem);

// Reads a rule from text; empty, with one line in `problem`, when there is none.
std::optional<FaultRule> ParseFaultRule(std::string_view text, std::string& problem);

// The text that ParseFaultRule reads as this rule.
std::string ToText(const FaultRule& rule);

}  // namespace unit
