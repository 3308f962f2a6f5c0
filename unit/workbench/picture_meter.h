#pragma once

#include <cstdint>
#include <string>

namespace unit {

// Counts the pictures of the window while something in it moves; a window where nothing changes is
// not drawn and has no rate. Times in host seconds from any start.
class PictureMeter {
  public:
    // A picture was shown at that time; `moving` when the next one should follow at once.
    void Count(double now, bool moving);

    int pictures() const { return pictures_; }
    double seconds() const { return seconds_; }
    // Pictures a second over the last half second of movement, 0 before.
    double rate() const { return rate_; }

    // "1203 pictures in 20.0 s (60.1 a second, longest gap 19 ms)"
    std::string Summary() const;

  private:
    bool moving_ = false;
    double last_ = 0;
    int pictures_ = 0;
    double seconds_ = 0;
    double longest_gap_ = 0;
    double rate_ = 0;
    int recent_pictures_ = 0;
    double recent_seconds_ = 0;
};

}  // namespace unit
