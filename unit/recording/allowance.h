#pragma once

#include <atomic>
#include <chrono>

#include "unit/recording/recording.h"

namespace unit {

// What the comparison passes over, because a run against the host's clock has jitter: its threads
// came late by some of the host's time, which is more of the unit's the faster it ran. A replay, in
// which a thread is never late, makes the same run with the jitter left out.
struct Allowance {
    // Two outputs of one kind that were recorded so close to each other may come the other way
    // round. None for a recording in simulated time.
    std::chrono::microseconds jitter{};
    // For so long the program may have been at work on what takes a replay no time, or have waited
    // for the host, which shows where the recorder could not look: a screen that stood no longer
    // may be missing on either side.
    std::chrono::microseconds work{};

    static Allowance Of(const Recording& recording);
    bool Exact() const { return jitter.count() == 0; }
};

// An output that has not come so long after its time does not come.
inline constexpr std::chrono::microseconds kLatestOutput = std::chrono::seconds(2);

// By how much the replay is behind the recording: what the program is given comes later by that,
// as an answer must not come sooner after its question than it did. It only grows: a program that
// is ahead waits for the inputs by itself. Any thread.
class Lateness {
  public:
    void Note(std::chrono::microseconds recorded, std::chrono::microseconds came);
    std::chrono::microseconds value() const { return std::chrono::microseconds(value_.load()); }

  private:
    std::atomic<std::chrono::microseconds::rep> value_{0};
};

}  // namespace unit
