#include "unit/line/fault_text.h"

#include <vector>

#include "control/grammar.h"
#include "control/words.h"
#include "unit/line/fault_words.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

#define TOLVANE_FAULT_TARGET                               \
    "[sync|type|code|length|payload|checksum [INDEX] of] " \
    "[plain|query] [NAME] "                                \
    "bytes|frames|requests|acknowledgements|indications "  \
    "[to-unit|to-dvr]"
#define TOLVANE_FAULT_RATE " [after SKIP] [every NUMBER] [chance ODDS [seed CODE]] [times COUNT]"

constexpr FaultPattern kPatterns[] = {
    {"drop " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Loses them on the line: single bytes, whole frames, or a part of them."},
    {"corrupt " TOLVANE_FAULT_TARGET " [xor|value BYTES]" TOLVANE_FAULT_RATE,
     "Changes them: by exclusive or with these bytes (FF when none are given), or to these "
     "values."},
    {"duplicate " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE, "Delivers them twice in a row."},
    {"delay DURATION " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Delivers them later; what follows keeps its place behind them."},
    {"split DURATION " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Makes a pause before the byte or the part, or in the middle of the frame."},
    {"inject BYTES before|after " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Adds these bytes before or after them."},
};

#undef TOLVANE_FAULT_TARGET
#undef TOLVANE_FAULT_RATE

// Each byte that the fault is about may get as many.
constexpr std::size_t kMostFaultBytes = 256;

bool ReadTarget(const control::Values& values, FaultRule& rule, std::string& problem) {
    const auto part = Chosen(kParts, values);
    if (values.Chose("bytes")) {
        if (!part && !values.Has("NAME") && !values.Chose("query") && !values.Chose("plain"))
            return true;
        problem =
            "single bytes have no part, name or query; allowed are frames, requests, "
            "acknowledgements and indications in place of 'bytes'";
        return false;
    }
    FrameFilter& frames = rule.frames.emplace();
    frames.type = Chosen(kTypes, values);
    if (values.Chose("query") || values.Chose("plain"))
        frames.query = values.Chose("query");
    if (values.Has("NAME")) {
        frames.command = ReadCommand(values.Text("NAME"), problem);
        if (!frames.command)
            return false;
    }
    rule.part = part.value_or(FramePart::kWhole);
    if (values.Has("INDEX"))
        rule.index = static_cast<std::size_t>(values.Number("INDEX"));
    return true;
}

}  // namespace

std::span<const FaultPattern> FaultPatterns() {
    return kPatterns;
}

std::optional<FaultRule> ReadFaultRule(const control::Values& values, std::string& problem) {
    FaultRule rule;
    rule.action = Chosen(kActions, values).value_or(FaultRule::Action::kDrop);
    if (!ReadTarget(values, rule, problem))
        return std::nullopt;
    rule.to_unit = !values.Chose("to-dvr");
    rule.to_dvr = !values.Chose("to-unit");
    if (values.Has("BYTES"))
        rule.bytes = values.Bytes("BYTES");
    if (rule.bytes.size() > kMostFaultBytes) {
        problem = "a fault has " + std::to_string(rule.bytes.size()) +
                  " bytes of its own; allowed are up to " + std::to_string(kMostFaultBytes);
        return std::nullopt;
    }
    rule.replaces = values.Chose("value");
    rule.after = rule.action == FaultRule::Action::kInject && !values.Chose("before");
    rule.duration = values.Duration("DURATION");
    rule.skip = static_cast<std::uint64_t>(values.Number("SKIP", 0));
    rule.every = static_cast<std::uint64_t>(values.Number("NUMBER", 1));
    if (values.Has("ODDS"))
        rule.chance_percent = control::ReadDecimal(values.Text("ODDS")).value_or(100);
    rule.seed = static_cast<std::uint32_t>(values.Number("CODE", 1));
    if (values.Has("COUNT"))
        rule.times = static_cast<std::uint64_t>(values.Number("COUNT"));
    return rule;
}

std::optional<FaultRule> ParseFaultRule(std::string_view text, std::string& problem) {
    static const control::Grammar grammar([] {
        std::vector<std::string_view> patterns;
        for (const FaultPattern& row : kPatterns)
            patterns.push_back(row.pattern);
        return control::Grammar(patterns);
    }());
    const auto words = control::SplitWords(text, problem);
    if (!words)
        return std::nullopt;
    const auto match = grammar.Read(*words, problem);
    if (!match)
        return std::nullopt;
    return ReadFaultRule(match->values, problem);
}

}  // namespace unit
