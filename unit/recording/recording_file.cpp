#include "unit/recording/recording_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "unit/events/event_text.h"

namespace unit {

using std::chrono::microseconds;

namespace {

// Host time: how long bytes may stay in memory while no event follows them.
constexpr auto kIdle = std::chrono::milliseconds(300);

// A longer pause between bytes begins another event, and so do more bytes: a line of the file must
// stay readable.
constexpr microseconds kMaxPause{2000};
constexpr std::size_t kMaxJoinedBytes = 256;

}  // namespace

RecordingFile::RecordingFile(WhenFull when_full, std::function<void(const std::string&)> say)
    : reproducible_(when_full == WhenFull::kWait), say_(std::move(say)), queue_(when_full) {}

bool RecordingFile::Finish() {
    if (writer_.joinable()) {
        queue_.Close();
        writer_.join();
    }
    return !failed_;
}

bool RecordingFile::Open(const std::string& path, const RecordingHeader& header,
                         std::string& problem) {
    path_ = path;
    file_.reset(std::fopen(path.c_str(), "we"));
    const std::string text = HeaderText(header);
    written_ = text.size();
    if (!file_ || std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size() ||
        std::fflush(file_.get()) != 0) {
        problem = path + ": " + std::strerror(errno);
        file_.reset();
        return false;
    }
    writer_ = std::thread([this] { WriteUntilClosed(); });
    return true;
}

void RecordingFile::WriteUntilClosed() {
    for (;;) {
        EventQueue::Batch batch = queue_.Take(kIdle);
        if (batch.idle && !reproducible_)
            WriteJoined();
        for (TimedEvent& timed : batch.events)
            Write(timed);
        if (batch.ended)
            break;
        Check(std::fflush(file_.get()) == 0);
    }
    WriteJoined();
    Check(std::fflush(file_.get()) == 0);
}

void RecordingFile::Write(TimedEvent& timed) {
    if (Join(timed))
        return;
    WriteJoined();
    if (std::holds_alternative<LineBytes>(timed.event))
        joined_ = std::move(timed);
    else
        WriteLine(timed);
}

// Appends the bytes to those before them; false when they cannot be joined.
bool RecordingFile::Join(const TimedEvent& timed) {
    const auto* const bytes = std::get_if<LineBytes>(&timed.event);
    if (!bytes || !joined_)
        return false;
    auto& joined = std::get<LineBytes>(joined_->event);
    const microseconds last = joined.later.empty() ? microseconds{} : joined.later.back().after;
    const microseconds after = timed.time - joined_->time;
    if (bytes->direction != joined.direction || bytes->direction == Direction::kToDvr ||
        after - last > kMaxPause || joined.bytes.size() + bytes->bytes.size() > kMaxJoinedBytes)
        return false;
    if (after != last)
        joined.later.push_back({joined.bytes.size(), after});
    joined.bytes.insert(joined.bytes.end(), bytes->bytes.begin(), bytes->bytes.end());
    return true;
}

void RecordingFile::WriteJoined() {
    if (joined_)
        WriteLine(*joined_);
    joined_.reset();
}

void RecordingFile::WriteLine(const TimedEvent& timed) {
    if (failed_)
        return;
    const std::string line = TimeText(timed.time) + " " + EventLine(timed.event) + "\n";
    written_ += line.size();
    if (written_ > kMaxRecordingBytes) {
        failed_ = true;
        say_(path_ + ": the recording ends here, at its limit of " +
             std::to_string(kMaxRecordingBytes) + " bytes");
        return;
    }
    Check(std::fwrite(line.data(), 1, line.size(), file_.get()) == line.size());
}

void RecordingFile::Check(bool written) {
    if (written || failed_)
        return;
    failed_ = true;
    say_(path_ + ": " + std::strerror(errno) + "; the recording ends here");
}

}  // namespace unit
