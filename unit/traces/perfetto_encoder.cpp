#include "unit/traces/perfetto_encoder.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "control/build_info.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_text.h"
#include "unit/line/memory_line.h"
#include "unit/traces/screen_name.h"

namespace unit {
namespace {

using Json = nlohmann::ordered_json;
using std::chrono::microseconds;
using Track = PerfettoEncoder::Track;

constexpr int kProcess = 1;

constexpr std::string_view kTrackNames[] = {
    "wizard step",
    "frames to unit",
    "frames to DVR",
    "power",
    "card",
    "unit",
    "DVR",
    "touch",
    "driver and failed calls",
    "power requests and broadcasts",
    "faults",
    "debug output",
    "operator and recording",
};
static_assert(std::size(kTrackNames) == static_cast<std::size_t>(Track::kCount));

int ThreadOf(Track track) {
    return static_cast<int>(track) + 1;
}

Json EventOf(const char* phase, microseconds time, Track track, const std::string& name) {
    return {{"ph", phase},
            {"ts", time.count()},
            {"pid", kProcess},
            {"tid", ThreadOf(track)},
            {"name", name}};
}

Json Metadata(const char* what, Track track, Json arguments) {
    Json event = EventOf("M", {}, track, what);
    event["args"] = std::move(arguments);
    return event;
}

// A text of the unit may not be UTF-8.
std::string TextOfJson(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string FrameTitle(const LineEntry& entry) {
    if (entry.kind == Segment::Kind::kStray)
        return "stray bytes";
    return FrameName(entry.bytes) + (entry.checksum_good() ? "" : " (damaged)");
}

// Where events without a rule of their own are shown.
template <class Kind>
constexpr Track kTrackOf = Track::kOperator;
template <>
constexpr Track kTrackOf<FingerMoved> = Track::kTouch;
template <>
constexpr Track kTrackOf<DvrReset> = Track::kDvr;
template <>
constexpr Track kTrackOf<DriverCalled> = Track::kCalls;
template <>
constexpr Track kTrackOf<CallFailed> = Track::kCalls;
template <>
constexpr Track kTrackOf<PowerRequested> = Track::kPowerMessages;
template <>
constexpr Track kTrackOf<BroadcastPosted> = Track::kPowerMessages;
template <>
constexpr Track kTrackOf<FaultApplied> = Track::kFaults;
template <>
constexpr Track kTrackOf<HalSwitched> = Track::kFaults;
template <>
constexpr Track kTrackOf<BatteryDriverSwitched> = Track::kFaults;
template <>
constexpr Track kTrackOf<ClockJumped> = Track::kFaults;
template <>
constexpr Track kTrackOf<LineLogged> = Track::kLog;
template <>
constexpr Track kTrackOf<ClosingBegan> = Track::kUnit;

}  // namespace

void PerfettoEncoder::OnBegin(const TraceStart& start) {
    Append("{\"displayTimeUnit\":\"ms\",\"otherData\":" +
           TextOfJson(
               {{"application", "tolvane " + control::BuildInfo()}, {"program", start.program}}) +
           ",\"traceEvents\":[");
    AddObject(TextOfJson(Metadata("process_name", Track::kStep, {{"name", "unit"}})));
    for (int index = 0; index < static_cast<int>(Track::kCount); ++index) {
        const auto track = static_cast<Track>(index);
        AddObject(TextOfJson(Metadata("thread_name", track, {{"name", kTrackNames[index]}})));
        AddObject(TextOfJson(Metadata("thread_sort_index", track, {{"sort_index", index}})));
    }
    SetState(start.time, Track::kUnit, "runs");
    Take(start.time, start.supply);
}

void PerfettoEncoder::OnEvent(const TimedEvent& timed) {
    const microseconds time = timed.time;
    if (const auto* const entry = std::get_if<LineEntry>(&timed.event))
        return Take(time, *entry);
    if (const auto* const change = std::get_if<SupplyChanged>(&timed.event))
        return Take(time, change->supply);
    if (const auto* const screen = std::get_if<ScreenSettled>(&timed.event))
        return SetState(time, Track::kStep, ScreenName(screen->texts));
    if (const auto* const card = std::get_if<CardMoved>(&timed.event))
        return SetState(time, Track::kCard, card->in ? "in " + card->folder : "");
    if (std::holds_alternative<UnitSuspended>(timed.event))
        return SetState(time, Track::kUnit, "suspended");
    if (std::holds_alternative<UnitWoken>(timed.event))
        return SetState(time, Track::kUnit, "runs");
    if (IsTraced(timed.event))
        std::visit([&]<class Kind>(
                       const Kind&) { AddInstant(time, kTrackOf<Kind>, EventLine(timed.event)); },
                   timed.event);
}

void PerfettoEncoder::OnEnd(microseconds time) {
    for (int index = 0; index < static_cast<int>(Track::kCount); ++index)
        SetState(time, static_cast<Track>(index), {});
    Append("\n]}\n");
}

// A frame to the unit ends when its last byte came; one to the DVR begins when it was sent, or
// behind the one before, since bytes pass one after the other.
void PerfettoEncoder::Take(microseconds time, const LineEntry& entry) {
    const bool to_unit = entry.direction == Direction::kToUnit;
    const Track track = to_unit ? Track::kToUnit : Track::kToDvr;
    const microseconds wire = WireTime(static_cast<std::int64_t>(entry.bytes.size()), kDvrBaudRate);
    microseconds& busy_until = busy_until_[track];
    const microseconds begin = std::max(to_unit ? time - wire : time, busy_until);
    busy_until = to_unit ? std::max(time, begin) : begin + wire;
    Json event = EventOf("X", begin, track, FrameTitle(entry));
    event["dur"] = (busy_until - begin).count();
    event["args"] = {{"frame", entry.Text()}, {"bytes", HexText(entry.bytes)}};
    AddObject(TextOfJson(event));
    if (const auto percent = entry.percent())
        AddCounter(time, "update percent", *percent);
}

void PerfettoEncoder::Take(microseconds time, const platform::PowerSupply& supply) {
    SetState(time, Track::kPower, supply.ac_line_status == 1 ? "external power" : "battery only");
    // 255 stands for an unknown charge.
    constexpr int kMostPercent = 100;
    if (supply.battery_life_percent <= kMostPercent)
        AddCounter(time, "battery percent", supply.battery_life_percent);
}

void PerfettoEncoder::SetState(microseconds time, Track track, const std::string& name) {
    std::string& state = states_[track];
    if (state == name)
        return;
    if (!state.empty())
        AddObject(TextOfJson(EventOf("E", time, track, state)));
    if (!name.empty())
        AddObject(TextOfJson(EventOf("B", time, track, name)));
    state = name;
}

void PerfettoEncoder::AddInstant(microseconds time, Track track, const std::string& name) {
    Json event = EventOf("i", time, track, name);
    event["s"] = "t";  // on its track only
    AddObject(TextOfJson(event));
}

void PerfettoEncoder::AddCounter(microseconds time, const std::string& name, int value) {
    const Json event = {{"ph", "C"},
                        {"ts", time.count()},
                        {"pid", kProcess},
                        {"name", name},
                        {"args", {{"percent", value}}}};
    AddObject(TextOfJson(event));
}

void PerfettoEncoder::AddObject(const std::string& event) {
    Append(std::exchange(first_, false) ? "\n" : ",\n");
    Append(event);
}

}  // namespace unit
