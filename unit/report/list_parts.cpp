#include <algorithm>
#include <chrono>
#include <vector>

#include "unit/events/event_text.h"
#include "unit/line/frame_text.h"
#include "unit/report/markup.h"
#include "unit/report/report_parts.h"
#include "unit/report/report_table.h"

namespace unit {
namespace {

bool IsFault(const Event& event) {
    return std::holds_alternative<FaultApplied>(event) ||
           std::holds_alternative<HalSwitched>(event) ||
           std::holds_alternative<BatteryDriverSwitched>(event) ||
           std::holds_alternative<ClockJumped>(event);
}

}  // namespace

ReportPart FaultsPart(const RunReport& report) {
    const RunRecord& record = report.record;
    struct Row {
        std::chrono::microseconds time;
        const char* what;
        std::string text;
    };
    std::vector<Row> rows;
    record.fault_commands.ForEach([&](const auto& command) {
        rows.push_back({command.time, "command", command.value});
    });
    record.marks.ForEach([&](const TimedEvent& timed) {
        if (IsFault(timed.event))
            rows.push_back({timed.time, "took effect", MarkText(timed.event)});
    });
    for (const platform::kernel::FailedCall& call : record.failed_calls)
        rows.push_back({call.time, "took effect", MarkText(call)});
    std::ranges::stable_sort(rows, {}, &Row::time);
    ReportTable table({"Time", "What", "Fault"});
    for (const Row& row : rows)
        table.Add({ShortTime(row.time), row.what, ShortText(row.text)});
    for (const std::string& fault : record.faults_at_end)
        table.Add({ShortTime(record.end), "not cleared", ShortText(fault)});
    const std::size_t left_out = record.marks.left_out() + record.fault_commands.left_out();
    return {"faults", "Faults", rows.size() + record.faults_at_end.size(),
            table.Html("events") + LeftOutNote(left_out, "faults or other marks")};
}

ReportPart EventsPart(const RunReport& report) {
    const Excerpt<TimedEvent>& events = report.record.events;
    return {"events", "Events", events.count(),
            TableOf(events, {"Time", "Kind", "Event"}, "events",
                    [](ReportTable& table, const TimedEvent& timed) {
                        const EventText text = TextOf(timed.event);
                        table.Add(
                            {ShortTime(timed.time), Escaped(text.kind), ShortText(text.details)},
                            IsFault(timed.event) ? "fault" : "");
                    })};
}

ReportPart LinePart(const RunReport& report) {
    const RunRecord& record = report.record;
    const std::string note =
        record.recorded
            ? Element("p", "As recorded; the replay compares its own frames with these.")
            : "";
    return {
        "line", "Serial line", record.frames.count(),
        note + TableOf(record.frames, {"Time", "Direction", "Type", "Command", "Payload", "Check"},
                       "frames", [](ReportTable& table, const LineEntry& entry) {
                           const bool frame = entry.kind != Segment::Kind::kStray;
                           const std::string bytes =
                               entry.checksum_good()
                                   ? ""
                                   : Element("code", ShortText(HexText(entry.bytes)));
                           table.Add({ShortTime(entry.time), DirectionName(entry.direction),
                                      frame ? FrameTypeName(entry.type()) : "",
                                      frame ? Escaped(CodeName(entry.code())) : "",
                                      frame ? ShortText(PayloadText(entry.type(), entry.code(),
                                                                    entry.payload()))
                                            : "",
                                      Escaped(entry.StatusText()) + bytes},
                                     entry.checksum_good()                   ? ""
                                     : entry.kind == Segment::Kind::kDamaged ? "damaged"
                                                                             : "stray");
                       })};
}

ReportPart LogPart(const RunReport& report) {
    const auto& log = report.record.log;
    return {"log", "Debug output", log.count(),
            TableOf(log, {"Time", "Line"}, "log", [](ReportTable& table, const auto& line) {
                table.Add({ShortTime(line.time), ShortText(line.value)});
            })};
}

}  // namespace unit
