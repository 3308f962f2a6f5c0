#include "unit/report/run_collector.h"

#include <utility>

#include "dvrsim/frame_codec.h"
#include "dvrsim/protocol.h"
#include "platform/kernel/scheduler.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_text.h"
#include "unit/recording/recorder.h"
#include "unit/traces/screen_name.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

constexpr std::size_t kMostVersions = 20;

template <class Kind>
constexpr bool kIsMark = false;
template <>
constexpr bool kIsMark<DvrReset> = true;
template <>
constexpr bool kIsMark<SupplyChanged> = true;
template <>
constexpr bool kIsMark<UnitSuspended> = true;
template <>
constexpr bool kIsMark<UnitWoken> = true;
template <>
constexpr bool kIsMark<FaultApplied> = true;
template <>
constexpr bool kIsMark<HalSwitched> = true;
template <>
constexpr bool kIsMark<BatteryDriverSwitched> = true;
template <>
constexpr bool kIsMark<ClockJumped> = true;

bool IsMark(const Event& event) {
    return std::visit([]<class Kind>(const Kind&) { return kIsMark<Kind>; }, event);
}

// The DVR acknowledges the query of the firmware that it runs.
bool IsFirmware(const LineEntry& entry) {
    return entry.checksum_good() && entry.query() &&
           entry.type() == static_cast<std::uint8_t>(dvrsim::FrameType::kAcknowledgement) &&
           entry.command() ==
               static_cast<std::uint16_t>(dvrsim::Command::kFirmwareUpgradeVersion) &&
           !entry.payload().empty();
}

}  // namespace

std::string MarkText(const Event& event) {
    const auto* const fault = std::get_if<FaultApplied>(&event);
    return fault ? fault->text : EventLine(event);
}

std::string MarkText(const kernel::FailedCall& call) {
    return EventLine(CallFailed{std::string(call.call), call.number, call.error});
}

void RunCollector::Begin(VirtualUnit& unit) {
    unit_ = &unit;
    record_.program = ProgramVersion();
    record_.kernel = unit.kernel_options();
    record_.begin = kernel::Now();
    subscription_ = unit.events().Subscribe([this](const TimedEvent& timed) { Note(timed); });
    RecordingHeader header;
    header.kernel = record_.kernel;
    screens_.emplace(unit, RecordingPace(header),
                     [this](const ScreenSettled& screen) { NoteScreen(screen); });
}

void RunCollector::NoteCommand(const Step& step) {
    const kernel::Time now = kernel::Now();
    RunRecord::Began& began = record_.lines[{step.file, step.line}];
    if (began.count++ == 0)
        began.first = now;
    if (step.text.starts_with("fault "))
        record_.fault_commands.Add({now, step.text});
}

void RunCollector::BeforeClose() {
    screens_.reset();
    record_.end = kernel::Now();
    record_.faults_at_end = unit_->faults().List();
    // What was shown too briefly, or is shown just now.
    if (unit_->screen_version() != seen_version_)
        NoteScreen(ReadScreen(unit_->Screen()));
}

void RunCollector::End() {
    subscription_ = {};
    NoteLastBytes();
    record_.failed_calls = kernel::FailedCalls();
}

void RunCollector::NoteRecorded(const Recording& recording) {
    record_.recorded = true;
    for (const RecordedEvent& event : recording.events)
        if (event.time <= record_.end && (std::holds_alternative<LineBytes>(event.event) ||
                                          std::holds_alternative<DvrReset>(event.event)))
            Note({event.time, event.event});
    NoteLastBytes();
}

void RunCollector::Note(const TimedEvent& timed) {
    const std::scoped_lock lock(mutex_);
    if (const auto* const line = std::get_if<LineBytes>(&timed.event))
        return line->ForEachChunk([&](kernel::Duration after, std::span<const std::uint8_t> bytes) {
            for (LineEntry& entry : line_.Take(timed.time + after, line->direction, bytes))
                NoteFrame(std::move(entry));
        });
    if (std::holds_alternative<LineEntry>(timed.event) || !IsTraced(timed.event))
        return;
    if (const auto* const line = std::get_if<LineLogged>(&timed.event)) {
        record_.log.Add({timed.time, line->text});
        return;
    }
    record_.events.Add(timed);
    if (IsMark(timed.event))
        record_.marks.Add(timed);
}

void RunCollector::NoteLastBytes() {
    for (LineEntry& entry : line_.Finish())
        NoteFrame(std::move(entry));
}

void RunCollector::NoteFrame(LineEntry entry) {
    if (const auto percent = entry.percent())
        record_.percents.Add({entry.time, *percent});
    if (IsFirmware(entry) && record_.firmware.size() < kMostVersions) {
        std::string firmware = PayloadText(entry.type(), entry.code(), entry.payload());
        std::erase(firmware, '\'');
        if (record_.firmware.empty() || record_.firmware.back() != firmware)
            record_.firmware.push_back(std::move(firmware));
    }
    record_.frames.Add(std::move(entry));
}

void RunCollector::NoteScreen(const ScreenSettled& screen) {
    seen_version_ = unit_->screen_version();
    const kernel::Time now = kernel::Now();
    record_.screens.Add(now, screen, unit_->TakePicture());
    std::string name = ScreenName(screen.texts);
    if (const auto* const last = record_.steps.last(); !last || last->value != name)
        record_.steps.Add({now, std::move(name)});
}

}  // namespace unit
