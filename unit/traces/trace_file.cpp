#include "unit/traces/trace_file.h"

#include <cerrno>
#include <cstring>

namespace unit {

bool TraceFile::Open(const std::string& path, const TraceStart& start, std::string& problem) {
    const auto format = TraceFormatOf(path);
    if (!format) {
        problem = path + ": no trace has this ending; allowed are " + TraceEndings();
        return false;
    }
    path_ = path;
    encoder_ = MakeTraceEncoder(*format);
    file_.reset(std::fopen(path.c_str(), "we"));
    const std::string begin = encoder_->Begin(start);
    if (!file_ || std::fwrite(begin.data(), 1, begin.size(), file_.get()) != begin.size() ||
        std::fflush(file_.get()) != 0) {
        problem = path + ": " + std::strerror(errno);
        file_.reset();
        return false;
    }
    writer_ = std::thread([this] { WriteUntilClosed(); });
    return true;
}

bool TraceFile::Finish() {
    if (writer_.joinable()) {
        queue_.Close();
        writer_.join();
    }
    return !failed_;
}

void TraceFile::WriteUntilClosed() {
    constexpr auto kForever = std::chrono::hours(1);
    for (;;) {
        const EventQueue::Batch batch = queue_.Take(kForever);
        std::string bytes;
        for (const TimedEvent& timed : batch.events)
            bytes += encoder_->Add(timed);
        if (batch.ended)
            break;
        Write(bytes);
    }
    Write(encoder_->End());
}

void TraceFile::Write(const std::string& bytes) {
    if (failed_ || (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size() &&
                    std::fflush(file_.get()) == 0))
        return;
    failed_ = true;
    say_(path_ + ": " + std::strerror(errno) + "; the trace ends here");
}

}  // namespace unit
