#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "unit/events/event_queue.h"
#include "unit/traces/trace_encoder.h"

namespace unit {

// Writes a trace during a run: a thread encodes the events of a queue and flushes the file whenever
// the queue is empty, so a reader can show it meanwhile.
class TraceFile {
  public:
    // `say` receives one line when writing has failed; nothing is written after that.
    TraceFile(WhenFull when_full, std::function<void(const std::string&)> say)
        : say_(std::move(say)), queue_(when_full) {}
    ~TraceFile() { Finish(); }
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    // Creates the file in the format of its ending; false with one line in `problem`. Once.
    bool Open(const std::string& path, const TraceStart& start, std::string& problem);
    bool open() const { return file_ != nullptr; }

    // Writes what is left; no Put may follow. False if the file is not complete.
    bool Finish();

    // Any thread, after Open.
    void Put(std::chrono::microseconds time, Event event) { queue_.Put(time, std::move(event)); }

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void WriteUntilClosed();
    void Write(const std::string& bytes);

    const std::function<void(const std::string&)> say_;
    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    std::unique_ptr<TraceEncoder> encoder_;
    bool failed_ = false;  // only the writer uses it
    EventQueue queue_;
    std::thread writer_;
};

}  // namespace unit
