#pragma once

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "unit/recording/recording.h"

namespace unit {

// Writes a recording: a thread takes the events from a queue and flushes the file whenever the
// queue is empty. Bytes that follow one another closely become one event; what the program sends at
// once stays an event of its own.
class RecordingFile {
  public:
    // What to do with an event when the queue is full.
    enum class WhenFull {
        kWait,  // for a unit whose clock stands still meanwhile
        kDrop,  // the file says how many are missing
    };

    // `say` receives one line when writing has failed; nothing is written after that.
    RecordingFile(WhenFull when_full, std::function<void(const std::string&)> say);
    // Writes what is left; no Put may follow.
    ~RecordingFile();
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    // Creates the file; false with one line in `problem`. Once.
    bool Open(const std::string& path, const RecordingHeader& header, std::string& problem);

    // Any thread. A time before that of the last event counts as that one.
    void Put(std::chrono::microseconds time, Event event);

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void WriteUntilClosed();
    void Write(TimedEvent& timed);
    bool Join(const TimedEvent& timed);
    void WriteJoined();
    void WriteLine(const TimedEvent& timed);
    void Check(bool written);

    const WhenFull when_full_;
    const std::function<void(const std::string&)> say_;
    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    // Only the writer uses these.
    bool failed_ = false;
    std::size_t written_ = 0;
    std::optional<TimedEvent> joined_;  // bytes of the line that more may be appended to

    std::mutex mutex_;
    std::condition_variable filled_;
    std::condition_variable emptied_;
    std::deque<TimedEvent> queue_;
    std::chrono::microseconds last_time_{};
    std::uint64_t lost_ = 0;
    bool closing_ = false;
    std::thread writer_;
};

}  // namespace unit
