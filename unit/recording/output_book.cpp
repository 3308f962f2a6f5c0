#include "unit/recording/output_book.h"

#include <algorithm>

#include "control/words.h"
#include "unit/events/hex_text.h"
#include "unit/line/frame_monitor.h"
#include "unit/line/frame_splitter.h"
#include "unit/recording/moment_text.h"

namespace unit {

using std::chrono::microseconds;

namespace {

constexpr const char* kNames[] = {"frame", "request", "broadcast"};

// A frame as a person reads it; the other kinds are their own text.
std::string Decoded(OutputKind kind, microseconds time, const std::string& text) {
    if (kind != OutputKind::kFrame)
        return text;
    const auto bytes = control::ReadBytes(text);
    FrameMonitor monitor(Direction::kToDvr);
    const auto entries = monitor.Take(time, *bytes);
    return text + (entries.empty() ? "" : "  (" + entries.front().Text() + ")");
}

// Finds out of what kind a moment is and cuts what was sent into frames: a real line may take one
// in several pieces.
class OutputFinder {
  public:
    struct Found {
        OutputKind kind;
        std::string text;
        DWORD result;
    };

    std::vector<Found> Find(const Moment& moment) {
        if (const auto* burst = std::get_if<LineBurst>(&moment))
            return burst->direction == Direction::kToDvr ? Cut(*burst) : std::vector<Found>();
        if (const auto* call = std::get_if<DriverCalled>(&moment))
            return {{OutputKind::kRequest, RequestText(*call), call->error}};
        if (const auto* change = std::get_if<SuspendChanged>(&moment); change && change->suspended)
            return {{OutputKind::kRequest, MomentText(moment), ERROR_SUCCESS}};
        if (std::holds_alternative<BroadcastPosted>(moment))
            return {{OutputKind::kBroadcast, MomentText(moment), ERROR_SUCCESS}};
        return {};
    }

  private:
    std::vector<Found> Cut(const LineBurst& burst) {
        std::vector<Found> found;
        for (const LinePiece& piece : burst.pieces)
            for (const std::uint8_t byte : piece.bytes)
                if (const auto segment = splitter_.Take(byte))
                    found.push_back({OutputKind::kFrame, HexText(segment->bytes), ERROR_SUCCESS});
        return found;
    }

    FrameSplitter splitter_;
};

}  // namespace

std::vector<OutputBook::Output> OutputBook::OutputsOf(const Recording& recording) {
    std::vector<Output> outputs;
    OutputFinder finder;
    for (const RecordedMoment& recorded : recording.moments)
        for (OutputFinder::Found& found : finder.Find(recorded.moment))
            outputs.push_back(
                {found.kind, recorded.time, recorded.line, std::move(found.text), found.result});
    return outputs;
}

std::vector<std::size_t> OutputBook::CountBefore(const Recording& recording) {
    std::vector<std::size_t> counts;
    OutputFinder finder;
    std::size_t count = 0;
    for (const RecordedMoment& recorded : recording.moments) {
        counts.push_back(count);
        count += finder.Find(recorded.moment).size();
    }
    return counts;
}

OutputBook::OutputBook(const Recording& recording, Lateness& lateness)
    : allowance_(Allowance::Of(recording)), lateness_(lateness), outputs_(OutputsOf(recording)) {}

OutputBook::Output* OutputBook::Find(OutputKind kind, const std::string& text) {
    std::size_t& next = next_[static_cast<std::size_t>(kind)];
    const auto passed = [&](const Output& output) { return output.kind != kind || output.came; };
    while (next < outputs_.size() && passed(outputs_[next]))
        ++next;
    for (std::size_t index = next; index < outputs_.size(); ++index) {
        Output& output = outputs_[index];
        if (output.time - outputs_[next].time > allowance_.jitter)
            break;
        if (passed(output))
            continue;
        if (output.text == text)
            return &output;
        if (allowance_.Exact())
            break;
    }
    return nullptr;
}

DWORD OutputBook::Take(OutputKind kind, microseconds time, const std::string& text) {
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
    lateness_.Note(found->time, time);
    while (next_of_all_ < outputs_.size() && outputs_[next_of_all_].came)
        ++next_of_all_;
    return found->result;
}

bool OutputBook::HaveCome(std::size_t count) const {
    const std::scoped_lock lock(mutex_);
    return next_of_all_ >= count;
}

void OutputBook::CheckMissing(microseconds now) {
    const std::scoped_lock lock(mutex_);
    if (!comparing_ || next_of_all_ == outputs_.size())
        return;
    const Output& output = outputs_[next_of_all_];
    if (now - output.time > kLatestOutput + lateness_.value())
        Differ(output.kind, &output, now, {});
}

void OutputBook::CheckAtEnd(microseconds now) {
    const std::scoped_lock lock(mutex_);
    if (comparing_ && next_of_all_ < outputs_.size())
        Differ(outputs_[next_of_all_].kind, &outputs_[next_of_all_], now, {});
}

void OutputBook::StopComparing() {
    const std::scoped_lock lock(mutex_);
    comparing_ = false;
}

void OutputBook::Differ(OutputKind kind, const Output* recorded, microseconds time,
                        const std::string& came) {
    comparing_ = false;
    difference_ = Difference{kNames[static_cast<std::size_t>(kind)]};
    if (recorded) {
        difference_->recorded = Decoded(kind, recorded->time, recorded->text);
        difference_->recorded_time = recorded->time;
        difference_->line = recorded->line;
    }
    difference_->time = time;
    if (!came.empty())
        difference_->came = Decoded(kind, time, came);
}

std::optional<Difference> OutputBook::difference() const {
    const std::scoped_lock lock(mutex_);
    return difference_;
}

std::size_t OutputBook::count(OutputKind kind) const {
    const std::scoped_lock lock(mutex_);
    return counts_[static_cast<std::size_t>(kind)];
}

}  // namespace unit
