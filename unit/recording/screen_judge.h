#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "unit/recording/allowance.h"
#include "unit/recording/difference.h"
#include "unit/recording/recording.h"

namespace unit {

// Holds the screens that a replay shows against those of the recording. Hardware's thread.
class ScreenJudge {
  public:
    ScreenJudge(const Recording& recording, Lateness& lateness);

    // The next screen that stands still, however short that is for a recording with jitter.
    void Take(std::chrono::microseconds time, const SettledScreen& screen);

    // Whether the one behind which `count` are counted has come, or has had its time.
    bool HasCome(std::size_t count, std::chrono::microseconds now) const;
    bool AllHaveCome() const { return Awaited() == screens_.size(); }

    // Looks for one that should have come by now, and for one that should have gone.
    void Check(std::chrono::microseconds now);
    // At the end of the replay: none may be missing.
    void CheckAtEnd(std::chrono::microseconds now);
    void StopComparing() { comparing_ = false; }

    const std::optional<Difference>& difference() const { return difference_; }
    std::size_t count() const { return count_; }

    static std::vector<std::size_t> CountBefore(const Recording& recording);

  private:
    struct Recorded {
        std::chrono::microseconds time;
        std::chrono::microseconds stood;  // for sure
        int line;
        SettledScreen screen;
    };

    struct Unseen {
        std::chrono::microseconds from;
        std::chrono::microseconds to;
    };

    // How much of that time the recorder saw the screen.
    std::chrono::microseconds SeenBetween(std::chrono::microseconds from,
                                          std::chrono::microseconds to) const;
    // Whether a recorded screen can have been one that the program was only painting: it stood
    // shortly, and each of its texts has been seen before, or is on `next`.
    bool MayBeMissing(std::size_t index, const SettledScreen* next) const;
    // The first one that must come.
    std::size_t Awaited() const;
    // The recorded screen that this one is, from the next one on.
    std::optional<std::size_t> Find(const SettledScreen& screen) const;
    void Match(std::size_t index, std::chrono::microseconds time);
    void Differ(std::size_t recorded, std::chrono::microseconds time);

    const Allowance allowance_;
    Lateness& lateness_;
    std::vector<Unseen> unseen_;
    std::vector<Recorded> screens_;
    std::size_t next_ = 0;
    std::size_t count_ = 0;
    std::set<std::string> seen_texts_;
    // What is shown and was not recorded, and since when; and the first such since the last match.
    std::optional<std::chrono::microseconds> unknown_since_;
    std::optional<SettledScreen> first_unknown_;
    std::chrono::microseconds first_unknown_since_{};
    SettledScreen shown_;
    bool comparing_ = true;
    std::optional<Difference> difference_;
};

}  // namespace unit
