#pragma once

#include "unit/picture/picture.h"

namespace unit {

// Draws a translucent disc with a dark edge, whose middle is that point of the picture.
void DrawFingerMark(Picture& picture, int x, int y);

}  // namespace unit
