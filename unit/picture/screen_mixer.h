#pragma once

#include "platform/gdi/surface.h"
#include "unit/devices/scaler.h"
#include "unit/picture/picture.h"

namespace unit {

// Mixes the two planes as the scaler does: the video, placed and scaled by the window record,
// shows exactly where the graphics has the key colour. Alpha 63 is opaque graphics.
Picture MixPlanes(const platform::gdi::Surface& graphics, const Picture& video,
                  const ScalerState& scaler);

}  // namespace unit
