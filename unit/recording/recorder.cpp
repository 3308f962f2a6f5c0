#include "unit/recording/recorder.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "unit/recording/program_version.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

// A piece of the line longer than this becomes several: its line must stay readable.
constexpr std::size_t kLongestPiece = 1024;

// A replay reads them before it starts: when they are written does not matter.
constexpr kernel::Duration kLookForFailedCalls = std::chrono::seconds(1);

template <class Kind>
constexpr bool kIsRecorded = std::is_constructible_v<Moment, Kind>;

bool OnScreen(const FingerMoved& finger) {
    return finger.x >= 0 && finger.y >= 0 && finger.x < platform::window::kScreenWidth &&
           finger.y < platform::window::kScreenHeight;
}

}  // namespace

ScreenWatch::Pace RecordingPace(const RecordingHeader& header) {
    using std::chrono::milliseconds;
    // A unit much faster than the host would spend its time looking.
    constexpr double kFast = 20;
    const double factor = header.Simulated() ? 1 : std::max(1.0, header.kernel.speed / kFast);
    const auto scaled = [factor](milliseconds time) {
        return kernel::Duration(static_cast<kernel::Duration::rep>(
            static_cast<double>(kernel::Duration(time).count()) * factor));
    };
    return {scaled(milliseconds(25)), scaled(milliseconds(50))};
}

Recorder::Recorder(VirtualUnit& unit, const VirtualUnit::Options& options)
    : unit_(unit),
      file_(options.kernel.mode == kernel::Mode::kSimulated ? RecordingFile::WhenFull::kWait
                                                            : RecordingFile::WhenFull::kDrop,
            [&unit](const std::string& line) { unit.Say(line); }) {
    header_.program = ProgramVersion();
    header_.kernel = options.kernel;
    header_.missing_bitmaps = options.missing_bitmaps;
}

Recorder::~Recorder() {
    unit_.OnClosing({});
    subscription_ = {};
    screens_.reset();
    NoteFailedCalls();
    kernel::Cancel(next_look_);
    if (closing_)
        file_.Put(kernel::Now(), Moment(RecordingEnded{}));
}

bool Recorder::Start(const std::string& path, std::string& problem) {
    header_.start = kernel::Now();
    header_.supply = unit_.supply();
    if (!file_.Open(path, header_, problem))
        return false;
    subscription_ = unit_.events().Subscribe([this](const TimedEvent& event) { Note(event); });
    const auto screen = [this](const SettledScreen& settled) {
        file_.Put(kernel::Now(), Moment(settled));
    };
    const auto unseen = [this](kernel::Time known_until) {
        file_.Put(kernel::Now(), Moment(ScreenUnseen{known_until}));
    };
    // In simulated time nothing is ever missed.
    screens_.emplace(unit_, RecordingPace(header_), screen,
                     header_.Simulated() ? ScreenWatch::UnseenListener() : unseen);
    LookForFailedCalls();
    unit_.OnClosing([this] {
        closing_ = true;
        file_.Put(kernel::Now(), Moment(ClosingBegan{}));
    });
    return true;
}

void Recorder::LookForFailedCalls() {
    NoteFailedCalls();
    next_look_ = kernel::After(kLookForFailedCalls, [this] { LookForFailedCalls(); });
}

void Recorder::NoteFailedCalls() {
    if (kernel::FailedCallCount() == failed_calls_)
        return;
    const std::vector<kernel::FailedCall> failed = kernel::FailedCalls();
    for (; failed_calls_ < failed.size(); ++failed_calls_) {
        const kernel::FailedCall& call = failed[failed_calls_];
        file_.Put(kernel::Now(),
                  Moment(CallFailed{std::string(call.call), call.number, call.error}));
    }
    // The kernel keeps no more of them.
    const std::uint64_t unknown = kernel::FailedCallCount() - failed.size();
    if (unknown > 0 && !std::exchange(calls_unknown_, true))
        file_.Put(kernel::Now(), Moment(EventsLost{unknown}));
}

void Recorder::Note(const TimedEvent& timed) {
    const auto note = [&]<class Kind>(const Kind& event) {
        if constexpr (std::is_same_v<Kind, LineBytes>) {
            for (std::size_t at = 0; at < event.bytes.size(); at += kLongestPiece) {
                const auto from = event.bytes.begin() + static_cast<std::ptrdiff_t>(at);
                const auto count = std::min(kLongestPiece, event.bytes.size() - at);
                file_.Put(timed.time, LineBytes{event.direction,
                                                {from, from + static_cast<std::ptrdiff_t>(count)}});
            }
        } else if constexpr (std::is_same_v<Kind, FingerMoved>) {
            if (OnScreen(event))
                file_.Put(timed.time, Moment(event));
        } else if constexpr (kIsRecorded<Kind>) {
            file_.Put(timed.time, Moment(event));
        }
    };
    std::visit(note, timed.event);
}

}  // namespace unit
