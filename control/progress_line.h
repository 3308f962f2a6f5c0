#pragma once

#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

namespace control {

// A line of a terminal that shows how far something is, redrawn in place at most ten times a
// second. Without a terminal it does nothing. Any thread.
class ProgressLine {
  public:
    // What is printed to the streams must pass through Print, which clears the line before.
    explicit ProgressLine(std::FILE* terminal);
    ~ProgressLine() { Clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Whether a Show would draw. Cheap: for a loop that runs often.
    bool Due() const;
    // Draws as much of the text as fits, if it is due.
    void Show(std::string_view text);
    void Clear();

    // Prints the text to the stream and flushes it; false on an error, which errno names.
    bool Print(std::string_view text, std::FILE* stream);

  private:
    using HostClock = std::chrono::steady_clock;

    void Erase();

    std::FILE* const terminal_;
    const bool shows_;
    mutable std::mutex mutex_;
    HostClock::time_point next_{};
    std::size_t columns_ = 0;  // of the terminal that the line uses now
};

}  // namespace control
