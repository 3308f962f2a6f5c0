#pragma once

#include "res/pictures/raster.h"

namespace pictures {

// Both strips hold two frames, one above the other: normal, then pressed. A frame fills its
// rectangle; black stands outside the rounded face.
constexpr int kButtonWidth = 168;
constexpr int kButtonHeight = 66;
Raster DrawButtonStrip();

constexpr int kCloseWidth = 75;
constexpr int kCloseHeight = 36;
Raster DrawCloseStrip();

// The program's icon, transparent outside its shape. The small one is a drawing of its own, with
// less in it.
Raster DrawLargeIcon();
Raster DrawSmallIcon();

}  // namespace pictures
