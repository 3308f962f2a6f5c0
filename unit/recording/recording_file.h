#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "unit/events/event_queue.h"
#include "unit/recording/recording.h"

namespace unit {

// Writes a recording: a thread takes the events from a queue and flushes the file whenever the
// queue is empty. Bytes that follow one another closely become one event; what the program sends at
// once stays an event of its own.
class RecordingFile {
  public:
    // `say` receives one line when writing has failed; nothing is written after that.
    RecordingFile(WhenFull when_full, std::function<void(const std::string&)> say);
    ~RecordingFile() { Finish(); }
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    // Creates the file; false with one line in `problem`. Once.
    bool Open(const std::string& path, const RecordingHeader& header, std::string& problem);

    // Writes what is left; no Put may follow. False if the file is not complete.
    bool Finish();

    // Any thread. A time before that of the last event counts as that one.
    void Put(std::chrono::microseconds time, Event event) { queue_.Put(time, std::move(event)); }

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

    // Whether only the unit's clock ends joined bytes, so that the same run makes the same file.
    const bool reproducible_;
    const std::function<void(const std::string&)> say_;
    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    // Only the writer uses these.
    bool failed_ = false;
    std::size_t written_ = 0;
    std::optional<TimedEvent> joined_;  // bytes of the line that more may be appended to

    EventQueue queue_;
    std::thread writer_;
};

}  // namespace unit
