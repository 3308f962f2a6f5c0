#pragma once

#include "unit/picture/picture.h"

namespace unit {

// Where the road meets the sky, in rows of the video.
inline constexpr int kHorizon = 210;

// What stands still while the car drives: the evening sky with its first stars, hills, the lights
// of a town.
void DrawBackdrop(Picture& picture);

}  // namespace unit
