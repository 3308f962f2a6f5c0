#pragma once

#include "unit/picture/picture.h"

namespace unit {

// The ground below the horizon: road with its marks, reflector posts, and the car ahead, after the
// camera has driven `travelled` (in widths of half the road at the picture's lower edge).
void DrawRoad(Picture& picture, double travelled);

}  // namespace unit
