#pragma once

#include <chrono>
#include <cstdint>

#include "unit/picture/caption.h"
#include "unit/picture/picture.h"

namespace unit {

inline constexpr int kVideoWidth = 720;
inline constexpr int kVideoHeight = 480;

// The picture that the DVR's camera sends: a drive at dusk with date, time and number of the frame
// in it, 30 frames of two fields a second. The same time of the unit gives the same picture, and
// the wizard's white, red and blue texts stay readable on it. Hardware's thread.
class VideoScene {
  public:
    VideoScene();

    // Valid until the next call.
    const Picture& At(std::chrono::microseconds time);

  private:
    Picture picture_;
    Caption caption_;
    std::int64_t field_ = -1;
};

// What the composite input shows while nothing feeds it.
const Picture& NoSignal();

}  // namespace unit
