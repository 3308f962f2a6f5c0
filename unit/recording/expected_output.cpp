#include "unit/recording/expected_output.h"

#include <algorithm>

#include "control/words.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_monitor.h"
#include "unit/line/frame_splitter.h"
#include "unit/line/frame_text.h"

namespace unit {

using std::chrono::microseconds;

namespace {

constexpr const char* kNames[] = {"frame", "request", "broadcast"};

// With a frame decoded; the other kinds are readable as they are.
std::string Decoded(OutputKind kind, microseconds time, const std::string& text) {
    if (kind != OutputKind::kFrame)
        return text;
    const auto bytes = control::ReadBytes(text);
    FrameMonitor monitor(Direction::kToDvr);
    const auto entries = monitor.Take(time, *bytes);
    return text + (entries.empty() ? "" : "  (" + entries.front().Text() + ")");
}

// Finds the outputs among the events. Splits what was sent into frames: a real line may accept one
// in several chunks.
class OutputFinder {
  public:
    struct Found {
        OutputKind kind;
        std::string text;
        DWORD result;
    };

    std::vector<Found> Find(const Event& event) {
        if (const auto* line = std::get_if<LineBytes>(&event))
            return line->direction == Direction::kToDvr ? Split(line->bytes) : std::vector<Found>();
        if (const auto* call = std::get_if<DriverCalled>(&event))
            return {{OutputKind::kRequest, RequestLine(*call), call->error}};
        if (std::holds_alternative<UnitSuspended>(event))
            return {{OutputKind::kRequest, EventLine(event), ERROR_SUCCESS}};
        if (std::holds_alternative<BroadcastPosted>(event))
            return {{OutputKind::kBroadcast, EventLine(event), ERROR_SUCCESS}};
        return {};
    }

  private:
    std::vector<Found> Split(const std::vector<std::uint8_t>& bytes) {
        std::vector<Found> found;
        for (const std::uint8_t byte : bytes)
            if (const auto segment = splitter_.Take(byte))
                found.push_back({OutputKind::kFrame, HexText(segment->bytes), ERROR_SUCCESS});
        return found;
    }

    FrameSplitter splitter_;
};

}  // namespace

std::vector<ExpectedOutput::Output> ExpectedOutput::OutputsOf(const Recording& recording) {
    std::vector<Output> outputs;
    OutputFinder finder;
    for (const RecordedEvent& recorded : recording.events)
        for (OutputFinder::Found& found : finder.Find(recorded.event))
            outputs.push_back(
                {found.kind, recorded.time, recorded.line, std::move(found.text), found.result});
    return outputs;
}

std::vector<std::size_t> ExpectedOutput::CountBefore(const Recording& recording) {
    std::vector<std::size_t> counts;
    OutputFinder finder;
    std::size_t count = 0;
    for (const RecordedEvent& recorded : recording.events) {
        counts.push_back(count);
        count += finder.Find(recorded.event).size();
    }
    return counts;
}

ExpectedOutput::ExpectedOutput(const Recording& recording, Lag& lag)
    : tolerance_(Tolerance::Of(recording)), lag_(lag), outputs_(OutputsOf(recording)) {}

ExpectedOutput::Output* ExpectedOutput::Find(OutputKind kind, const std::string& text) {
    std::size_t& next = next_[static_cast<std::size_t>(kind)];
    const auto passed = [&](const Output& output) { return output.kind != kind || output.came; };
    while (next < outputs_.size() && passed(outputs_[next]))
        ++next;
    for (std::size_t index = next; index < outputs_.size(); ++index) {
        Output& output = outputs_[index];
        if (output.time - outputs_[next].time > tolerance_.jitter)
            break;
        if (passed(output))
            continue;
        if (output.text == text)
            return &output;
        if (tolerance_.Exact())
            break;
    }
    return nullptr;
}

DWORD ExpectedOutput::Compare(OutputKind kind, microseconds time, const std::string& text) {
    const std::scoped_lock lock(mutex_);
    if (!comparing_)
        return ERROR_SUCCESS;
    Output* const found = Find(kind, text);
    if (!found) {
        const std::size_t next = next_[static_cast<std::size_t>(kind)];
        Differ(kind, next < outputs_.size() ? &outputs_[next] : nullptr, time, text);
        return ERROR_SUCCESS;
    }
    found->came = true;
    ++counts_[static_cast<std::size_t>(kind)];
    lag_.Note(found->time, time);
    while (next_of_all_ < outputs_.size() && outputs_[next_of_all_].came)
        ++next_of_all_;
    return found->result;
}

bool ExpectedOutput::HaveCome(std::size_t count) const {
    const std::scoped_lock lock(mutex_);
    return next_of_all_ >= count;
}

void ExpectedOutput::CheckMissing(microseconds now) {
    const std::scoped_lock lock(mutex_);
    if (!comparing_ || next_of_all_ == outputs_.size())
        return;
    const Output& output = outputs_[next_of_all_];
    if (now - output.time > kLatestOutput + lag_.value())
        Differ(output.kind, &output, now, {});
}

void ExpectedOutput::CheckAtEnd(microseconds now) {
    const std::scoped_lock lock(mutex_);
    if (comparing_ && next_of_all_ < outputs_.size())
        Differ(outputs_[next_of_all_].kind, &outputs_[next_of_all_], now, {});
}

void ExpectedOutput::StopComparing() {
    const std::scoped_lock lock(mutex_);
    comparing_ = false;
}

void ExpectedOutput::Differ(OutputKind kind, const Output* recorded, microseconds time,
                            const std::string& replayed) {
    comparing_ = false;
    difference_ = Difference{kNames[static_cast<std::size_t>(kind)]};
    if (recorded) {
        difference_->recorded = Decoded(kind, recorded->time, recorded->text);
        difference_->recorded_time = recorded->time;
        difference_->line = recorded->line;
    }
    difference_->time = time;
    if (!replayed.empty())
        difference_->replayed = Decoded(kind, time, replayed);
}

std::optional<Difference> ExpectedOutput::difference() const {
    const std::scoped_lock lock(mutex_);
    return difference_;
}

std::size_t ExpectedOutput::count(OutputKind kind) const {
    const std::scoped_lock lock(mutex_);
    return counts_[static_cast<std::size_t>(kind)];
}

}  // namespace unit
