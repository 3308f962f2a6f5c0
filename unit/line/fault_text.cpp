#include "unit/line/fault_text.h"

#include <cstdio>
#include <vector>

#include "control/grammar.h"
#include "control/words.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

using Action = FaultRule::Action;

template <class Value>
struct Word {
    std::string_view word;
    Value value;
};

constexpr Word<FaultRule::Action> kActions[] = {
    {"drop", FaultRule::Action::kDrop},           {"corrupt", FaultRule::Action::kCorrupt},
    {"duplicate", FaultRule::Action::kDuplicate}, {"delay", FaultRule::Action::kDelay},
    {"split", FaultRule::Action::kSplit},         {"inject", FaultRule::Action::kInject},
};
constexpr Word<FramePart> kParts[] = {
    {"sync", FramePart::kSync},       {"type", FramePart::kType},
    {"code", FramePart::kCode},       {"length", FramePart::kLength},
    {"payload", FramePart::kPayload}, {"checksum", FramePart::kChecksum},
};
constexpr Word<dvrsim::FrameType> kTypes[] = {
    {"requests", dvrsim::FrameType::kRequest},
    {"acknowledgements", dvrsim::FrameType::kAcknowledgement},
    {"indications", dvrsim::FrameType::kIndication},
};

// The value whose word is in the line.
template <class Value, std::size_t kCount>
std::optional<Value> Chosen(const Word<Value> (&table)[kCount], const control::Values& values) {
    for (const Word<Value>& row : table)
        if (values.Chose(row.word))
            return row.value;
    return std::nullopt;
}

template <class Value, std::size_t kCount>
std::string WordFor(const Word<Value> (&table)[kCount], Value value) {
    for (const Word<Value>& row : table)
        if (row.value == value)
            return std::string(row.word);
    return {};
}

#define TOLVANE_FAULT_TARGET                               \
    "[sync|type|code|length|payload|checksum [INDEX] of] " \
    "[plain|query] [NAME] "                                \
    "bytes|frames|requests|acknowledgements|indications "  \
    "[to-unit|to-dvr]"
#define TOLVANE_FAULT_RATE " [after SKIP] [every NUMBER] [chance ODDS [seed CODE]] [times COUNT]"

constexpr FaultPattern kPatterns[] = {
    {"drop " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Drops them: single bytes, whole frames, or a part of each frame."},
    {"corrupt " TOLVANE_FAULT_TARGET " [xor|value BYTES]" TOLVANE_FAULT_RATE,
     "Changes them: by exclusive or with these bytes, by default FF, or to these values."},
    {"duplicate " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE, "Delivers them twice in a row."},
    {"delay DURATION " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Delivers them later; the bytes after them stay behind them."},
    {"split DURATION " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Pauses before the byte or the part, or in the middle of the frame."},
    {"inject BYTES before|after " TOLVANE_FAULT_TARGET TOLVANE_FAULT_RATE,
     "Adds these bytes before or after them."},
};

#undef TOLVANE_FAULT_TARGET
#undef TOLVANE_FAULT_RATE

constexpr std::size_t kMaxFaultBytes = 256;

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

std::string BytesWord(const std::vector<std::uint8_t>& bytes) {
    std::string word = HexText(bytes);
    std::erase(word, ' ');
    return word;
}

std::string ActionText(const FaultRule& rule) {
    std::string word = WordFor(kActions, rule.action);
    if (rule.action == Action::kDelay || rule.action == Action::kSplit)
        return word + " " + control::DurationWord(rule.duration);
    if (rule.action == Action::kInject)
        return word + " " + BytesWord(rule.bytes) + (rule.after ? " after" : " before");
    return word;
}

std::string TargetText(const FaultRule& rule) {
    if (!rule.frames)
        return " bytes";
    std::string text;
    if (rule.part != FramePart::kWhole)
        text += " " + WordFor(kParts, rule.part) +
                (rule.index ? " " + std::to_string(*rule.index) : "") + " of";
    const FrameFilter& frames = *rule.frames;
    if (frames.query)
        text += *frames.query ? " query" : " plain";
    if (frames.command)
        text += " " + CodeName(*frames.command);
    return text + " " + (frames.type ? WordFor(kTypes, *frames.type) : "frames");
}

std::string RateText(const FaultRule& rule) {
    std::string text;
    if (rule.skip > 0)
        text += " after " + std::to_string(rule.skip);
    if (rule.every > 1)
        text += " every " + std::to_string(rule.every);
    if (rule.chance_percent < 100) {
        char chance[64];
        std::snprintf(chance, sizeof chance, " chance %.10g seed %u", rule.chance_percent,
                      rule.seed);
        text += chance;
    }
    if (rule.times)
        text += " times " + std::to_string(*rule.times);
    return text;
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
    if (rule.bytes.size() > kMaxFaultBytes) {
        problem = "a fault has " + std::to_string(rule.bytes.size()) +
                  " bytes of its own; allowed are up to " + std::to_string(kMaxFaultBytes);
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

std::string ToText(const FaultRule& rule) {
    std::string text = ActionText(rule) + TargetText(rule);
    if (!rule.to_dvr)
        text += " to-unit";
    if (!rule.to_unit)
        text += " to-dvr";
    if (rule.action == Action::kCorrupt &&
        (rule.replaces || rule.bytes != std::vector<std::uint8_t>{0xFF}))
        text += (rule.replaces ? " value " : " xor ") + BytesWord(rule.bytes);
    return text + RateText(rule);
}

}  // namespace unit
