#pragma once

#include <chrono>

#include "unit/picture/picture.h"

namespace unit {

inline constexpr int kVideoWidth = 720;
inline constexpr int kVideoHeight = 480;

// The picture that the DVR's camera sends at that time of the unit: a road at dusk, its lane marks
// moving, 30 frames a second. The wizard's texts stay readable on it.
Picture VideoFrame(std::chrono::microseconds time);

// What the composite input shows while nothing feeds it.
Picture NoSignal();

}  // namespace unit
