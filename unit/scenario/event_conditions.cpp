#include <algorithm>

#include "platform/kernel/text.h"
#include "unit/line/frame_text.h"
#include "unit/scenario/conditions.h"

namespace unit {
namespace {

using control::Values;
using dvrsim::FrameType;
using Call = DriverCalled::Call;

template <class Kind>
Condition About(std::string_view pattern, std::string_view help,
                bool (*matches)(const Kind&, const Values&)) {
    Condition condition{pattern, help};
    condition.kind = Event(Kind{}).index();
    condition.matches = [matches](const Event& event, const Values& values) {
        const Kind* const kind = std::get_if<Kind>(&event);
        return kind && matches(*kind, values);
    };
    return condition;
}

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

bool IsLogged(const LineLogged& line, const Values& values) {
    return line.text.find(values.Text("TEXT")) != std::string::npos;
}

// Whether the value is not given, or is that number.
template <class Number>
bool IsUnsetOr(const Values& values, std::string_view name, Number number) {
    return !values.Has(name) || static_cast<std::uint64_t>(values.Number(name)) == number;
}

bool IsPosted(const BroadcastPosted& broadcast, const Values& values) {
    return broadcast.name.find(platform::kernel::FromUtf8(values.Text("NAME"))) !=
               std::wstring::npos &&
           IsUnsetOr(values, "WPARAM", broadcast.wparam) &&
           IsUnsetOr(values, "LPARAM", static_cast<std::uint64_t>(broadcast.lparam));
}

bool IsCalled(const DriverCalled& call, const Values& values) {
    if (call.driver != platform::kernel::FromUtf8(values.Text("DRIVER")))
        return false;
    if (values.Chose("refuses"))
        return call.error != ERROR_SUCCESS && IsUnsetOr(values, "CODE", call.code) &&
               IsUnsetOr(values, "ERROR", call.error);
    const Call wanted = values.Chose("opened")   ? Call::kOpen
                        : values.Chose("closed") ? Call::kClose
                                                 : Call::kControl;
    return call.call == wanted && call.error == ERROR_SUCCESS &&
           IsUnsetOr(values, "CODE", call.code);
}

bool IsApplied(const FaultApplied& fault, const Values& values) {
    return fault.text.find(values.Text("TEXT")) != std::string::npos;
}

Condition FrameCondition() {
    Condition frame = About<LineEntry>(
        "frame [damaged] [plain|query] [NAME] [request|acknowledgement|indication] to-unit|to-dvr "
        "[payload BYTES]",
        "A frame passed on the line: with that command (a name such as FW_Upgrade_Version, or a "
        "number), of that type, with a payload that begins with these bytes. The checksum of a "
        "damaged frame is wrong.",
        IsFrame);
    frame.problem = WrongCommand;
    return frame;
}

}  // namespace

std::vector<Condition> EventConditions() {
    return {
        FrameCondition(),
        About<LineLogged>("log TEXT", "The program printed a line that contains the text.",
                          IsLogged),
        About<BroadcastPosted>("broadcast NAME [wparam WPARAM] [lparam LPARAM]",
                               "The program posted a message to all windows whose name contains "
                               "the given one.",
                               IsPosted),
        About<DriverCalled>("driver DRIVER opened|closed",
                            "The program opened or closed the driver.", IsCalled),
        About<DriverCalled>("driver DRIVER asked [code CODE]",
                            "A request of the program to the driver succeeded.", IsCalled),
        About<DriverCalled>("driver DRIVER refuses [code CODE] [error ERROR]",
                            "The program could not open the driver, or a request failed.",
                            IsCalled),
        About<FaultApplied>("line fault [TEXT]",
                            "A fault of the line was applied; its message contains the text.",
                            IsApplied),
    };
}

}  // namespace unit
