#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "control/words.h"
#include "unit/line/fault_rule.h"

namespace unit {

// The words of fault rules, for reading and for writing them.
template <class Value>
struct Word {
    std::string_view word;
    Value value;
};

inline constexpr Word<FaultRule::Action> kActions[] = {
    {"drop", FaultRule::Action::kDrop},           {"corrupt", FaultRule::Action::kCorrupt},
    {"duplicate", FaultRule::Action::kDuplicate}, {"delay", FaultRule::Action::kDelay},
    {"split", FaultRule::Action::kSplit},         {"inject", FaultRule::Action::kInject},
};
inline constexpr Word<FramePart> kParts[] = {
    {"sync", FramePart::kSync},       {"type", FramePart::kType},
    {"code", FramePart::kCode},       {"length", FramePart::kLength},
    {"payload", FramePart::kPayload}, {"checksum", FramePart::kChecksum},
};
inline constexpr Word<dvrsim::FrameType> kTypes[] = {
    {"requests", dvrsim::FrameType::kRequest},
    {"acknowledgements", dvrsim::FrameType::kAcknowledgement},
    {"indications", dvrsim::FrameType::kIndication},
};

// The value whose word the line had.
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

}  // namespace unit
