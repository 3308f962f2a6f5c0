#include "unit/recording/recording_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "unit/recording/moment_text.h"

namespace unit {
namespace {

constexpr std::size_t kMostQueued = 1U << 16;

// Of the host's time: how long a burst of bytes may lie in memory while nothing follows it.
constexpr auto kIdle = std::chrono::milliseconds(300);

}  // namespace

RecordingFile::RecordingFile(WhenFull when_full, std::function<void(const std::string&)> say)
    : when_full_(when_full), say_(std::move(say)) {}

RecordingFile::~RecordingFile() {
    if (!writer_.joinable())
        return;
    {
        const std::scoped_lock lock(mutex_);
        closing_ = true;
        filled_.notify_one();
    }
    writer_.join();
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

void RecordingFile::Put(std::chrono::microseconds time, Event event) {
    std::unique_lock lock(mutex_);
    if (when_full_ == WhenFull::kWait)
        emptied_.wait(lock, [this] { return queue_.size() < kMostQueued; });
    last_time_ = std::max(last_time_, time);
    if (queue_.size() >= kMostQueued) {
        ++lost_;
        return;
    }
    if (lost_ > 0)
        queue_.push_back({last_time_, Moment(EventsLost{std::exchange(lost_, 0)})});
    queue_.push_back({last_time_, std::move(event)});
    filled_.notify_one();
}

void RecordingFile::WriteUntilClosed() {
    BurstJoiner joiner;
    std::deque<Queued> taken;
    for (;;) {
        bool closing = false;
        {
            std::unique_lock lock(mutex_);
            const bool idle =
                !filled_.wait_for(lock, kIdle, [this] { return !queue_.empty() || closing_; });
            // In simulated time bursts end by the unit's clock alone: the same run gives the same
            // file.
            if (idle && when_full_ == WhenFull::kDrop) {
                lock.unlock();
                EndBurst(joiner);
                lock.lock();
            }
            taken.swap(queue_);
            closing = closing_ && taken.empty();
            emptied_.notify_all();
        }
        for (const Queued& queued : taken)
            Write(joiner, queued);
        taken.clear();
        if (closing)
            break;
        Check(std::fflush(file_.get()) == 0);
    }
    EndBurst(joiner);
    Check(std::fflush(file_.get()) == 0);
}

void RecordingFile::Write(BurstJoiner& joiner, const Queued& queued) {
    if (const auto* bytes = std::get_if<LineBytes>(&queued.event)) {
        if (const auto ended = joiner.Take(queued.time, *bytes))
            WriteLine(ended->time, ended->burst);
        return;
    }
    EndBurst(joiner);
    WriteLine(queued.time, std::get<Moment>(queued.event));
}

void RecordingFile::EndBurst(BurstJoiner& joiner) {
    if (const auto ended = joiner.End())
        WriteLine(ended->time, ended->burst);
}

void RecordingFile::WriteLine(std::chrono::microseconds time, const Moment& moment) {
    if (failed_)
        return;
    const std::string line = TimeText(time) + " " + MomentText(moment) + "\n";
    written_ += line.size();
    if (written_ > kLongestRecording) {
        failed_ = true;
        say_(path_ + ": the recording is " + std::to_string(kLongestRecording) +
             " bytes long and ends here");
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
