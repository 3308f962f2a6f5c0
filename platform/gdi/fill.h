#pragma once

#include <cstdint>

#include "platform/gdi/drawing_context.h"

namespace platform::gdi {

// Paints the visible part of a rectangle in one colour. With the GDI lock held.
void Fill(DrawingContext& context, const RECT& rectangle, std::uint32_t pixel);

}  // namespace platform::gdi
