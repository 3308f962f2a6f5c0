#include "unit/recording/replay.h"

#include <algorithm>

#include "control/words.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_monitor.h"
#include "unit/picture/screen_reader.h"
#include "unit/recording/recorder.h"
#include "unit/recording/replay_inputs.h"

namespace unit {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

namespace {

constexpr auto kCloseLimit = 60s;

// How often to look for outputs that should have come.
constexpr kernel::Duration kCheckInterval = 2ms;

VirtualUnit::Options OptionsOf(const RecordingHeader& header, ExpectedOutput& expected,
                               const std::shared_ptr<ReplayLine>& line) {
    VirtualUnit::Options options;
    options.kernel.mode = kernel::Mode::kSimulated;
    options.kernel.seed = header.kernel.seed;
    options.kernel.preempt = header.Simulated() && header.kernel.preempt;
    options.kernel.waiting_repaints = header.kernel.waiting_repaints;
    options.kernel.start = header.start;
    options.missing_bitmaps = header.missing_bitmaps;
    options.dvr.line = DvrPort::Line::kNone;
    options.drivers[L"COM9:"] = std::make_shared<ReplaySerialDriver>(expected, L"COM9:", line);
    for (const wchar_t* name : {L"DVR1:", L"SCA0:"})
        options.drivers[name] = std::make_shared<ReplayDriver>(expected, name);
    return options;
}

class Run {
  public:
    Run(const Recording& recording, const Program& program, DebugLog& log,
        const std::function<void(const std::string&)>& say)
        : recording_(recording),
          line_(std::make_shared<ReplayLine>(expected_)),
          unit_(OptionsOf(recording.header, expected_, line_), program, log, say),
          inputs_(recording, {unit_, *line_, expected_, screens_, lag_},
                  [this] { recording_ended_ = true; }),
          watch_(unit_, PaceOf(recording.header),
                 [this](const ScreenSettled& screen) { screens_.Compare(kernel::Now(), screen); }) {
        unit_.SetSupply(recording.header.supply);
        FailCalls();
        subscription_ = unit_.events().Subscribe([this](const TimedEvent& event) { Note(event); });
        Check();
    }
    ~Run() { kernel::Cancel(next_check_); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    ReplayResult ToTheEnd(const std::vector<ReplayObserver*>& observers) {
        for (ReplayObserver* const observer : observers)
            observer->Begin(unit_);
        unit_.Start();
        kernel::RunHostThread([this] { return Ended(); });
        ReplayResult result;
        result.time = kernel::Now() - recording_.header.start;
        // The program's end is compared if the recording contains it.
        if (!Closes())
            StopComparing();
        if (Found())
            NoteScreen(result);
        for (ReplayObserver* const observer : observers)
            observer->BeforeClose();
        if (!unit_.Close(kCloseLimit))
            result.notes.push_back("the program did not end: " + unit_.leftovers());
        for (ReplayObserver* const observer : observers)
            observer->End();
        screens_.CheckAtEnd(kernel::Now());
        expected_.CheckAtEnd(kernel::Now());
        if (Found() && !result.screen)
            NoteScreen(result);
        result.difference = expected_.difference() ? expected_.difference() : screens_.difference();
        for (std::size_t kind = 0; kind < kOutputKinds; ++kind)
            result.outputs[kind] = expected_.count(static_cast<OutputKind>(kind));
        result.screens = screens_.count();
        result.lag = lag_.value();
        NoteRecording(result);
        return result;
    }

  private:
    // A recording with jitter may contain a screen that the replay shows for an instant.
    static ScreenWatch::Pace PaceOf(const RecordingHeader& header) {
        return header.Simulated() ? RecordingPace(header) : ScreenWatch::Pace{};
    }

    void FailCalls() const {
        for (const RecordedEvent& recorded : recording_.events)
            if (const auto* failed = std::get_if<CallFailed>(&recorded.event))
                kernel::AddCallFault({failed->call, failed->number - 1, 1, failed->error});
    }

    void Note(const TimedEvent& timed) {
        if (std::holds_alternative<BroadcastPosted>(timed.event))
            expected_.Compare(OutputKind::kBroadcast, timed.time, EventLine(timed.event));
        if (std::holds_alternative<UnitSuspended>(timed.event))
            expected_.Compare(OutputKind::kRequest, timed.time, EventLine(timed.event));
    }

    void Check() {
        expected_.CheckMissing(kernel::Now());
        screens_.Check(kernel::Now());
        next_check_ = kernel::After(kCheckInterval, [this] { Check(); });
    }

    bool Found() const { return expected_.difference() || screens_.difference(); }

    bool Ended() const {
        if (Found())
            return true;
        return recording_ended_ &&
               (Closes() || (expected_.AllHaveCome() && screens_.AllHaveCome()));
    }

    bool Closes() const {
        const auto closing = [](const RecordedEvent& recorded) {
            return std::holds_alternative<ClosingBegan>(recorded.event);
        };
        return recording_.complete && std::ranges::any_of(recording_.events, closing);
    }

    void StopComparing() {
        expected_.StopComparing();
        screens_.StopComparing();
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
        const RecordedEvent* const last =
            recording_.events.empty() ? nullptr : &recording_.events.back();
        for (const RecordedEvent& recorded : recording_.events)
            if (const auto* lost = std::get_if<EventsLost>(&recorded.event))
                result.notes.push_back("replayed up to line " + std::to_string(recorded.line) +
                                       ", where " + std::to_string(lost->count) +
                                       " events were not recorded");
        if (!recording_.complete)
            result.notes.push_back("replayed up to " +
                                   TimeText(last ? last->time : recording_.header.start) +
                                   ", where the recording was cut off");
        if (const std::string version = ProgramVersion(); version != recording_.header.program)
            result.notes.push_back("version " + recording_.header.program +
                                   " of the program was recorded, this is version " + version);
    }

    const Recording& recording_;
    Lag lag_;
    ExpectedOutput expected_{recording_, lag_};
    ScreenComparison screens_{recording_, lag_};
    const std::shared_ptr<ReplayLine> line_;
    VirtualUnit unit_;
    bool recording_ended_ = false;
    ReplayInputs inputs_;
    ScreenWatch watch_;
    EventHub::Subscription subscription_;
    kernel::EventId next_check_ = 0;
};

std::string Count(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Side(const char* side, std::chrono::microseconds time, const std::string& what) {
    return std::string("\n  ") + side + "  " + TimeText(time) + "  " + what;
}

// The words of `one` that `other` does not have in their place, each in marks, and ... for the
// others. Of texts with different numbers of words, everything between the equal ends is marked.
std::string MarkDifference(const std::string& one, const std::string& other, const char* open,
                           const char* close) {
    std::string ignored;
    using Words = std::vector<std::string>;
    const Words words = control::SplitWords(one, ignored).value_or(Words{one});
    const Words others = control::SplitWords(other, ignored).value_or(Words{other});
    const std::size_t shorter = std::min(words.size(), others.size());
    std::size_t begin = 0;
    while (begin < shorter && words[begin] == others[begin])
        ++begin;
    std::size_t at_end = 0;
    while (at_end < shorter - begin &&
           words[words.size() - 1 - at_end] == others[others.size() - 1 - at_end])
        ++at_end;
    std::string text;
    bool left_out = false;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const bool between = index >= begin && index < words.size() - at_end;
        const bool differs =
            between && (words.size() != others.size() || words[index] != others[index]);
        if (differs)
            text += open + control::QuoteWord(words[index]) + close + " ";
        else if (!left_out)
            text += index == 0 ? words[index] + " " : "... ";
        left_out = !differs && index > 0;
    }
    text.pop_back();
    return text;
}

// The latest frame that the program was given before the difference and that is damaged: whoever
// edits a recording forgets the checksum. Empty when there is none.
std::string DamagedInput(const Recording& recording, const Difference& difference) {
    FrameMonitor monitor(Direction::kToUnit);
    std::string found;
    for (const RecordedEvent& recorded : recording.events) {
        if (recorded.time > difference.time)
            break;
        const auto* const line = std::get_if<LineBytes>(&recorded.event);
        if (!line || line->direction != Direction::kToUnit)
            continue;
        for (const LineEntry& entry : monitor.Take(recorded.time, line->bytes))
            if (entry.kind == Segment::Kind::kDamaged)
                found = "the frame given at line " + std::to_string(recorded.line) +
                        " has a bad checksum";
    }
    return found;
}

}  // namespace

ReplayResult Replay(const Recording& recording, const Program& program, DebugLog& log,
                    const std::function<void(const std::string&)>& say,
                    const std::vector<ReplayObserver*>& observers) {
    return Run(recording, program, log, say).ToTheEnd(observers);
}

std::string ReplayReport(const Recording& recording, const ReplayResult& result,
                         const std::string& verdict, const std::string& times) {
    const std::string equal =
        Count(result.outputs[0], "frame") + ", " + Count(result.outputs[1], "request") + ", " +
        Count(result.outputs[2], "broadcast") + ", " + Count(result.screens, "screen") + " equal";
    std::string text = recording.file;
    if (const auto& difference = result.difference) {
        if (difference->line > 0)
            text += ":" + std::to_string(difference->line);
        text += ": " + verdict + ", the replay differs in a " + difference->what + "; before it " +
                equal + "; " + times;
        const std::string& recorded = difference->recorded;
        const std::string& replayed = difference->replayed;
        if (recorded.empty())
            text += "\n  recorded  no more " + difference->what + "s" +
                    Side("replayed", difference->time, replayed);
        else if (replayed.empty())
            text += Side("recorded", difference->recorded_time, recorded) +
                    Side("replayed", difference->time, "nothing");
        else
            text +=
                Side("recorded", difference->recorded_time,
                     MarkDifference(recorded, replayed, "[-", "-]")) +
                Side("replayed", difference->time, MarkDifference(replayed, recorded, "{+", "+}"));
        if (const std::string damaged = DamagedInput(recording, *difference); !damaged.empty())
            text += "\n  " + damaged;
        text += "\n  on the screen then: " + control::JoinWords(result.screen_texts);
    } else {
        text += ": " + verdict + ", " + equal + "; " + times;
    }
    if (result.lag.count() > 0)
        text += "\n  the program was up to " + std::to_string(result.lag.count() / 1000) +
                " ms later than recorded; its inputs were delayed by as much";
    for (const std::string& note : result.notes)
        text += "\n  " + note;
    return text;
}

}  // namespace unit
