#pragma once

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "unit/recording/recording.h"

namespace unit {

// A recording on its way to the disk: a queue and a thread that empties it into the file, which is
// flushed whenever the queue is empty. A burst of bytes goes out with the event that follows it.
class RecordingFile {
  public:
    // What to do with an event that finds the queue full.
    enum class WhenFull {
        kWait,  // for a unit whose clock stands still meanwhile
        kDrop,  // the file tells how many are missing
    };
    using Event = std::variant<LineBytes, Moment>;

    // `say` takes one line when something cannot be written, after which nothing more is.
    RecordingFile(WhenFull when_full, std::function<void(const std::string&)> say);
    // Writes what is left; nothing may be put any more.
    ~RecordingFile();
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    // Creates the file; false with one line in `problem`. Once.
    bool Open(const std::string& path, const RecordingHeader& header, std::string& problem);

    // Any thread. A time that is earlier than that of the event before it counts as that one.
    void Put(std::chrono::microseconds time, Event event);

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct Queued {
        std::chrono::microseconds time;
        Event event;
    };

    void WriteUntilClosed();
    void Write(BurstJoiner& joiner, const Queued& queued);
    void WriteLine(std::chrono::microseconds time, const Moment& moment);
    void EndBurst(BurstJoiner& joiner);
    void Check(bool written);

    const WhenFull when_full_;
    const std::function<void(const std::string&)> say_;
    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    // The writer's alone.
    bool failed_ = false;
    std::size_t written_ = 0;

    std::mutex mutex_;
    std::condition_variable filled_;
    std::condition_variable emptied_;
    std::deque<Queued> queue_;
    std::chrono::microseconds last_time_{};
    std::uint64_t lost_ = 0;
    bool closing_ = false;
    std::thread writer_;
};

}  // namespace unit
