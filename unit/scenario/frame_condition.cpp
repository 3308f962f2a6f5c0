#include <algorithm>

#include "dvrsim/command_names.h"
#include "unit/scenario/conditions.h"
#include "unit/scenario/happening_condition.h"

namespace unit {
namespace {

using control::Values;
using dvrsim::FrameType;

std::optional<std::uint16_t> CommandIn(const Values& values) {
    const std::string word = values.Text("NAME");
    if (const auto command = dvrsim::CommandNamed(word))
        return static_cast<std::uint16_t>(*command);
    const auto number = control::ReadNumber(word);
    if (number && *number >= 0 && *number < dvrsim::kQueryBit)
        return static_cast<std::uint16_t>(*number);
    return std::nullopt;
}

std::string WrongCommand(const Values& values) {
    if (!values.Has("NAME") || CommandIn(values))
        return {};
    return "'" + values.Text("NAME") +
           "' is no command of the DVR; allowed is a name such as FW_Upgrade_Version, or a number "
           "such as 0x2E";
}

FrameFilter FilterOf(const Values& values) {
    FrameFilter filter;
    if (values.Has("NAME"))
        filter.command = CommandIn(values);
    if (values.Chose("request"))
        filter.type = FrameType::kRequest;
    if (values.Chose("acknowledgement"))
        filter.type = FrameType::kAcknowledgement;
    if (values.Chose("indication"))
        filter.type = FrameType::kIndication;
    if (values.Chose("plain") || values.Chose("query"))
        filter.query = values.Chose("query");
    return filter;
}

bool IsFrame(const LineEntry& entry, const Values& values) {
    const Cut::Kind kind = values.Chose("damaged") ? Cut::Kind::kDamaged : Cut::Kind::kFrame;
    const Direction direction = values.Chose("to-unit") ? Direction::kToUnit : Direction::kToDvr;
    if (entry.kind != kind || entry.direction != direction ||
        !FilterOf(values).Matches(entry.bytes))
        return false;
    const std::vector<std::uint8_t> start = values.Bytes("BYTES");
    const auto payload = entry.payload();
    return payload.size() >= start.size() && std::ranges::equal(start, payload.first(start.size()));
}

}  // namespace

Condition FrameCondition() {
    Condition frame = About<LineEntry>(
        "frame [damaged] [plain|query] [NAME] [request|acknowledgement|indication] to-unit|to-dvr "
        "[payload BYTES]",
        "A frame passed on the line: of that command (a name such as FW_Upgrade_Version, or a "
        "number), of that type, with a payload that begins so; a damaged one has a wrong checksum.",
        IsFrame);
    frame.problem = WrongCommand;
    return frame;
}

}  // namespace unit
