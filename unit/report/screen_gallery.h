#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "unit/events/event.h"
#include "unit/picture/picture.h"
#include "unit/report/excerpt.h"

namespace unit {

// A screen that the unit showed.
struct ShownScreen {
    std::chrono::microseconds time;  // when it was shown first
    std::string name;                // the wizard's step, or the notice over it
    std::vector<std::string> texts;
    std::uint64_t digest;
    Picture picture;
    // How many screens before it are left out because they differ from it in numbers only.
    std::size_t similar_before = 0;
};

// The distinct screens of a run. Of screens in a row that differ in numbers only, such as a
// percent, it keeps the first and the last. At most 32 pictures, the first 12 and the latest 20.
// One thread.
class ScreenGallery {
  public:
    void Add(std::chrono::microseconds time, const ScreenSettled& screen, Picture picture);

    const Excerpt<ShownScreen>& screens() const { return screens_; }
    // Of the screen that was added last.
    std::uint64_t last_digest() const { return last_digest_; }
    // When this screen was shown again, at most the first 5 times, and how often.
    struct Repeats {
        std::vector<std::chrono::microseconds> first;
        std::size_t count = 0;
    };
    Repeats RepeatsOf(std::uint64_t digest) const;

  private:
    Excerpt<ShownScreen> screens_{12, 20};
    std::map<std::uint64_t, Repeats> known_;  // of the screens in screens_
    std::uint64_t last_digest_ = 0;
    std::vector<std::string> last_kind_;  // the texts of the last screen without their numbers
    bool in_row_ = false;  // the last two that were kept came in a row and differ in numbers only
};

}  // namespace unit
