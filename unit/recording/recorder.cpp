#include "unit/recording/recorder.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "unit/events/event_text.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

// More bytes that come together become several events: a line of the file must stay readable.
constexpr std::size_t kMaxChunk = 1024;

// A replay reads the failed calls before it starts, so they may be written late.
constexpr kernel::Duration kFailedCallInterval = std::chrono::seconds(1);

WhenFull WhenFullOf(const VirtualUnit::Options& options) {
    return options.kernel.mode == kernel::Mode::kSimulated ? WhenFull::kWait : WhenFull::kDrop;
}

bool OnScreen(const FingerMoved& finger) {
    return finger.x >= 0 && finger.y >= 0 && finger.x < platform::window::kScreenWidth &&
           finger.y < platform::window::kScreenHeight;
}

}  // namespace

ScreenWatch::Pace RecordingPace(const RecordingHeader& header) {
    using std::chrono::milliseconds;
    constexpr kernel::Duration kSettleTime = milliseconds(50);
    // Recordings in simulated time are compared exactly, so this must never change.
    if (header.Simulated())
        return {kSettleTime, milliseconds(25)};
    // A unit much faster than the host would spend its time reading screens.
    constexpr double kFast = 20;
    const double factor = std::max(1.0, header.kernel.speed / kFast);
    return {kernel::Duration(
        static_cast<kernel::Duration::rep>(static_cast<double>(kSettleTime.count()) * factor))};
}

Recorder::Recorder(VirtualUnit& unit, const VirtualUnit::Options& options)
    : unit_(unit),
      file_(WhenFullOf(options), [&unit](const std::string& line) { unit.Say(line); }),
      trace_(WhenFullOf(options), [&unit](const std::string& line) { unit.Say(line); }) {
    header_.program = ProgramVersion();
    header_.kernel = options.kernel;
    header_.missing_bitmaps = options.missing_bitmaps;
}

bool Recorder::Finish() {
    const auto finish = [this] {
        const bool recorded = file_.Finish();
        return trace_.Finish() && recorded;
    };
    if (!screens_)
        return finish();
    unit_.OnClosing({});
    subscription_ = {};
    screens_.reset();
    NoteFailedCalls();
    kernel::Cancel(next_check_);
    if (closing_)
        Put(kernel::Now(), RecordingEnded{});
    return finish();
}

bool Recorder::Start(const Files& files, std::string& problem) {
    header_.start = kernel::Now();
    header_.supply = unit_.supply();
    records_ = !files.recording.empty();
    if (records_ && !file_.Open(files.recording, header_, problem))
        return false;
    if (!files.trace.empty() &&
        !trace_.Open(files.trace, {header_.start, header_.supply, header_.program}, problem))
        return false;
    subscription_ = unit_.events().Subscribe([this](const TimedEvent& event) { Note(event); });
    const auto screen = [this](const ScreenSettled& settled) { Put(kernel::Now(), settled); };
    const auto unseen = [this](kernel::Time known_until) {
        Put(kernel::Now(), ScreenUnseen{known_until});
    };
    // In simulated time no picture is missed.
    screens_.emplace(unit_, RecordingPace(header_), screen,
                     header_.Simulated() ? ScreenWatch::UnseenSubscriber() : unseen);
    CheckFailedCalls();
    unit_.OnClosing([this] {
        closing_ = true;
        Put(kernel::Now(), ClosingBegan{});
    });
    return true;
}

void Recorder::CheckFailedCalls() {
    NoteFailedCalls();
    next_check_ = kernel::After(kFailedCallInterval, [this] { CheckFailedCalls(); });
}

void Recorder::NoteFailedCalls() {
    if (kernel::FailedCallCount() == failed_calls_)
        return;
    const std::vector<kernel::FailedCall> failed = kernel::FailedCalls();
    for (; failed_calls_ < failed.size(); ++failed_calls_) {
        const kernel::FailedCall& call = failed[failed_calls_];
        Put(kernel::Now(), CallFailed{std::string(call.call), call.number, call.error});
    }
    // The kernel does not keep all of them.
    const std::uint64_t unknown = kernel::FailedCallCount() - failed.size();
    if (unknown > 0 && !std::exchange(calls_unknown_, true))
        Put(kernel::Now(), EventsLost{unknown});
}

void Recorder::Note(const TimedEvent& timed) {
    const auto* const finger = std::get_if<FingerMoved>(&timed.event);
    if (finger && !OnScreen(*finger))
        return;
    const auto* const line = std::get_if<LineBytes>(&timed.event);
    if (!line || line->bytes.size() <= kMaxChunk)
        return Put(timed.time, timed.event);
    for (auto from = line->bytes.begin(); from != line->bytes.end();) {
        const auto to = from + std::min<std::ptrdiff_t>(kMaxChunk, line->bytes.end() - from);
        Put(timed.time, LineBytes{line->direction, {from, to}});
        from = to;
    }
}

void Recorder::Put(kernel::Time time, const Event& event) {
    if (records_ && IsRecorded(event))
        file_.Put(time, event);
    // A trace makes the frames of the bytes.
    const bool shown = IsTraced(event) || std::holds_alternative<LineBytes>(event);
    if (trace_.open() && shown && !std::holds_alternative<LineEntry>(event))
        trace_.Put(time, event);
}

}  // namespace unit
