#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "unit/recording/recording.h"
#include "unit/recording/tolerance.h"

namespace unit {

// Compares the screens that a replay shows with those of the recording. Host thread.
class ScreenComparison {
  public:
    ScreenComparison(const Recording& recording, Lag& lag);

    // The next settled screen. For a recording with jitter, a screen settles at once.
    void Compare(std::chrono::microseconds time, const ScreenSettled& screen);

    // Whether the first `count` screens have come, or are overdue.
    bool HaveCome(std::size_t count, std::chrono::microseconds now) const;
    bool AllHaveCome() const { return FirstExpected() == screens_.size(); }

    // Reports a screen that should have come by now, or one that should have changed.
    void Check(std::chrono::microseconds now);
    // At the end of the replay, when none may be missing.
    void CheckAtEnd(std::chrono::microseconds now);
    void StopComparing() { comparing_ = false; }

    const std::optional<Difference>& difference() const { return difference_; }
    std::size_t count() const { return count_; }

    // For each event of a recording, the number of screens before it.
    static std::vector<std::size_t> CountBefore(const Recording& recording);

  private:
    struct Recorded {
        std::chrono::microseconds time;
        std::chrono::microseconds shown_for;  // at least
        int line;
        ScreenSettled screen;
    };

    struct Unseen {
        std::chrono::microseconds from;
        std::chrono::microseconds to;
    };

    // How much of that time the recorder saw the screen.
    std::chrono::microseconds SeenBetween(std::chrono::microseconds from,
                                          std::chrono::microseconds to) const;
    // Whether the replay may skip a recorded screen: it was shown for no longer than the jitter, or
    // for a short time while the program was painting it, so that each of its texts has been seen
    // before or is on `next`.
    bool MayBeMissing(std::size_t index, const ScreenSettled* next) const;
    // The first screen from the next one on that must come.
    std::size_t FirstExpected() const;
    // The recorded screen, from the next one on, that equals this one.
    std::optional<std::size_t> Find(const ScreenSettled& screen) const;
    void Match(std::size_t index, std::chrono::microseconds time);
    void Differ(std::size_t recorded, std::chrono::microseconds time);

    const Tolerance tolerance_;
    Lag& lag_;
    std::vector<Unseen> unseen_;
    std::vector<Recorded> screens_;
    std::size_t next_ = 0;
    std::size_t count_ = 0;
    std::set<std::string> seen_texts_;
    // When the screen shown now appeared, if it was not recorded; and the first such screen since
    // the last match.
    std::optional<std::chrono::microseconds> unknown_since_;
    std::optional<ScreenSettled> first_unknown_;
    std::chrono::microseconds first_unknown_since_{};
    ScreenSettled shown_;
    bool comparing_ = true;
    std::optional<Difference> difference_;
};

}  // namespace unit
