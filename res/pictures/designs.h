#pragma once

#include "res/pictures/raster.h"

namespace pictures {

// Both strips hold two frames, one above the other: normal, then pressed. A frame fills its
// rectangle; outside the rounded face it is black.
constexpr int kButtonWidth = 168;
constexpr int kButtonHeight = 66;
Raster DrawButtonStrip();

constexpr int kCloseWidth = 75;
constexpr int kCloseHeight = 36;
Raster DrawCloseStrip();

// The program's icon, transparent outside its shape. The small one is a separate drawing with less
// detail.
Raster DrawLargeIcon();
Raster DrawSmallIcon();

}  // namespace pictures
