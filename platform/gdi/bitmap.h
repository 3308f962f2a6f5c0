#pragma once

#include <windows.h>

#include <cstdint>

namespace platform::gdi {

// A new bitmap object, black without pixels (0x00RRGGBB, rows from the top); null with the last
// error set when the size cannot be. With the GDI lock held.
HBITMAP AddBitmap(int width, int height, const std::uint32_t* pixels);

}  // namespace platform::gdi
