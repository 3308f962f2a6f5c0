#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "unit/picture/picture.h"

namespace unit {

inline constexpr int kVideoWidth = 720;
inline constexpr int kVideoHeight = 480;

// The picture that the DVR's camera sends: a drive at dusk, with date, time and frame number; 30
// frames of two fields a second. The same unit time gives the same picture, and the wizard's white,
// red and blue texts stay readable on it. Host thread.
class VideoScene {
  public:
    VideoScene();

    // Valid until the next call.
    const Picture& At(std::chrono::microseconds time);

  private:
    Picture picture_;
    // The caption's characters, drawn once.
    std::vector<std::uint8_t> caption_ink_;
    std::int64_t field_ = -1;
};

// What the composite input shows without a signal: black.
const Picture& NoSignal();

}  // namespace unit
