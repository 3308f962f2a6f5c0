#pragma once

#include "platform/gdi/surface.h"
#include "unit/devices/scaler.h"
#include "unit/picture/picture.h"

namespace unit {

// Mixes the two planes as the scaler does. The video, placed and scaled by the window record, shows
// exactly where the graphics plane has the key colour. At alpha 63 the graphics plane is opaque.
// The result uses the memory of `reused`.
Picture MixPlanes(const platform::gdi::Surface& graphics, const Picture& video,
                  const ScalerState& scaler, Picture reused = {});

}  // namespace unit
