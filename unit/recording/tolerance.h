#pragma once

#include <atomic>
#include <chrono>
#include <string>

#include "unit/recording/recording.h"

namespace unit {

// The first place where a replay and its recording differ.
struct Difference {
    std::string what{};  // "frame"

    // What was recorded, decoded; empty when the recording has no more of the kind.
    std::string recorded{};
    std::chrono::microseconds recorded_time{};
    int line = 0;  // of the recording

    // What the replay did instead, decoded; empty when it did nothing.
    std::string replayed{};
    std::chrono::microseconds time{};
};

// What the comparison ignores because a run against the host's clock has jitter: the host delayed
// its threads, by more of the unit's time the faster the unit ran. In a replay no thread is
// delayed, so it makes the same run without the jitter.
struct Tolerance {
    // Two outputs of one kind that were recorded within this time of each other may change places,
    // and a screen that was shown for no longer may be missing from the replay. Zero for a
    // recording in simulated time.
    std::chrono::microseconds jitter{};
    // The longest time that the program may have spent on work that takes no time in a replay, or
    // waited for the host (visible where the recorder could not read the screen). A screen that was
    // shown for no longer may be missing on either side.
    std::chrono::microseconds work{};

    static Tolerance Of(const Recording& recording);
    bool Exact() const { return jitter.count() == 0; }
};

// An output that is later than this is missing.
inline constexpr std::chrono::microseconds kLatestOutput = std::chrono::seconds(2);

// How far the replay is behind the recording. Inputs are delayed by it, so that no response comes
// sooner after its request than it was recorded. The lag only grows: a program that is ahead waits
// for its inputs anyway. Any thread.
class Lag {
  public:
    void Note(std::chrono::microseconds recorded, std::chrono::microseconds replayed);
    std::chrono::microseconds value() const { return std::chrono::microseconds(value_.load()); }

  private:
    std::atomic<std::chrono::microseconds::rep> value_{0};
};

}  // namespace unit
