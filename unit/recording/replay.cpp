#include "unit/recording/replay.h"

#include <algorithm>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/picture/screen_reader.h"
#include "unit/recording/moment_text.h"
#include "unit/recording/program_version.h"
#include "unit/recording/recorder.h"
#include "unit/recording/replay_inputs.h"

namespace unit {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

namespace {

constexpr auto kCloseLimit = 60s;

// A recording with jitter may have caught a screen that stands for a moment only.
constexpr ScreenWatch::Pace kClosePace = {2ms, 0ms};

VirtualUnit::Options OptionsOf(const RecordingHeader& header, OutputBook& book,
                               const std::shared_ptr<ReplayLine>& line) {
    VirtualUnit::Options options;
    options.kernel.mode = kernel::Mode::kSimulated;
    options.kernel.seed = header.kernel.seed;
    options.kernel.preempt = header.Simulated() && header.kernel.preempt;
    options.kernel.waiting_repaints = header.kernel.waiting_repaints;
    options.kernel.start = header.start;
    options.missing_bitmaps = header.missing_bitmaps;
    options.dvr.line = DvrPort::Line::kNone;
    options.drivers[L"COM9:"] = std::make_shared<ReplaySerialDriver>(book, L"COM9:", line);
    for (const wchar_t* name : {L"DVR1:", L"SCA0:"})
        options.drivers[name] = std::make_shared<ReplayDriver>(book, name);
    return options;
}

class Run {
  public:
    Run(const Recording& recording, const Program& program, DebugLog& log,
        const std::function<void(const std::string&)>& say)
        : recording_(recording),
          line_(std::make_shared<ReplayLine>(book_)),
          unit_(OptionsOf(recording.header, book_, line_), program, log, say),
          inputs_(recording, {unit_, *line_, book_, judge_, lateness_},
                  [this] { recording_ended_ = true; }),
          screens_(unit_, PaceOf(recording.header),
                   [this](const SettledScreen& screen) { judge_.Take(kernel::Now(), screen); }) {
        unit_.SetSupply(recording.header.supply);
        FailCalls();
        subscription_ = unit_.events().Subscribe([this](const TimedEvent& event) { Note(event); });
        Look();
    }
    ~Run() { kernel::Cancel(look_); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    ReplayResult ToTheEnd() {
        unit_.Start();
        kernel::RunHostThread([this] { return Ended(); });
        ReplayResult result;
        result.time = kernel::Now() - recording_.header.start;
        // How the program ends is compared when the recording has its end.
        if (!Closes())
            StopComparing();
        if (Found())
            NoteScreen(result);
        if (!unit_.Close(kCloseLimit))
            result.notes.push_back("the program did not end: " + unit_.leftovers());
        judge_.CheckAtEnd(kernel::Now());
        book_.CheckAtEnd(kernel::Now());
        if (Found() && !result.screen)
            NoteScreen(result);
        result.difference = book_.difference() ? book_.difference() : judge_.difference();
        for (std::size_t kind = 0; kind < kOutputKinds; ++kind)
            result.outputs[kind] = book_.count(static_cast<OutputKind>(kind));
        result.screens = judge_.count();
        result.lateness = lateness_.value();
        NoteRecording(result);
        return result;
    }

  private:
    static ScreenWatch::Pace PaceOf(const RecordingHeader& header) {
        return header.Simulated() ? RecordingPace(header) : kClosePace;
    }

    void FailCalls() const {
        for (const RecordedMoment& recorded : recording_.moments)
            if (const auto* failed = std::get_if<CallFailed>(&recorded.moment))
                kernel::AddCallFault({failed->call, failed->number - 1, 1, failed->error});
    }

    void Note(const TimedEvent& timed) {
        if (const auto* broadcast = std::get_if<BroadcastPosted>(&timed.event))
            book_.Take(OutputKind::kBroadcast, timed.time, MomentText(*broadcast));
        const auto* change = std::get_if<SuspendChanged>(&timed.event);
        if (change && change->suspended)
            book_.Take(OutputKind::kRequest, timed.time, MomentText(*change));
    }

    void Look() {
        book_.CheckMissing(kernel::Now());
        judge_.Check(kernel::Now());
        look_ = kernel::After(kClosePace.look, [this] { Look(); });
    }

    bool Found() const { return book_.difference() || judge_.difference(); }

    bool Ended() const {
        if (Found())
            return true;
        return recording_ended_ && (Closes() || (book_.AllHaveCome() && judge_.AllHaveCome()));
    }

    bool Closes() const {
        const auto closing = [](const RecordedMoment& recorded) {
            return std::holds_alternative<ClosingBegan>(recorded.moment);
        };
        return recording_.complete && std::ranges::any_of(recording_.moments, closing);
    }

    void StopComparing() {
        book_.StopComparing();
        judge_.StopComparing();
    }

    void NoteScreen(ReplayResult& result) {
        StopComparing();
        const platform::gdi::Surface& screen = unit_.Screen();
        const auto pixels = screen.pixels();
        result.screen = Picture{screen.width(), screen.height(), {pixels.begin(), pixels.end()}};
        for (const std::wstring& text : ScreenReader(screen).Texts())
            result.screen_texts.push_back(kernel::ToUtf8(text));
    }

    void NoteRecording(ReplayResult& result) const {
        const RecordedMoment* const last =
            recording_.moments.empty() ? nullptr : &recording_.moments.back();
        for (const RecordedMoment& recorded : recording_.moments)
            if (const auto* lost = std::get_if<EventsLost>(&recorded.moment))
                result.notes.push_back("line " + std::to_string(recorded.line) + " tells of " +
                                       std::to_string(lost->count) +
                                       " events that were not recorded; it was replayed to there");
        if (!recording_.complete)
            result.notes.push_back("the recording was cut off at " +
                                   TimeText(last ? last->time : recording_.header.start) +
                                   "; it was replayed to there");
        if (const std::string version = ProgramVersion(); version != recording_.header.program)
            result.notes.push_back("version " + recording_.header.program +
                                   " of the program was recorded, this is version " + version);
    }

    const Recording& recording_;
    Lateness lateness_;
    OutputBook book_{recording_, lateness_};
    ScreenJudge judge_{recording_, lateness_};
    const std::shared_ptr<ReplayLine> line_;
    VirtualUnit unit_;
    bool recording_ended_ = false;
    ReplayInputs inputs_;
    ScreenWatch screens_;
    EventHub::Subscription subscription_;
    kernel::EventId look_ = 0;
};

}  // namespace

ReplayResult Replay(const Recording& recording, const Program& program, DebugLog& log,
                    const std::function<void(const std::string&)>& say) {
    return Run(recording, program, log, say).ToTheEnd();
}

}  // namespace unit
