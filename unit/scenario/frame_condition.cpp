#include <algorithm>

#include "unit/line/frame_text.h"
#include "unit/scenario/conditions.h"
#include "unit/scenario/happening_condition.h"

namespace unit {
namespace {

using control::Values;
using dvrsim::FrameType;

std::string WrongCommand(const Values& values) {
    std::string problem;
    if (values.Has("NAME"))
        ReadCommand(values.Text("NAME"), problem);
    return problem;
}

FrameFilter FilterOf(const Values& values) {
    FrameFilter filter;
    std::string read_before;
    if (values.Has("NAME"))
        filter.command = ReadCommand(values.Text("NAME"), read_before);
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
    const Segment::Kind kind =
        values.Chose("damaged") ? Segment::Kind::kDamaged : Segment::Kind::kFrame;
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
