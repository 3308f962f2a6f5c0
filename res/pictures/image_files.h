#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "res/pictures/raster.h"

namespace pictures {

using Bytes = std::vector<std::uint8_t>;

// A .bmp of 24 bits a pixel; the picture must be opaque.
Bytes EncodeBitmap(const Raster& picture);

// A .ico of 16 colours an image, each with its mask.
Bytes EncodeIcon(std::span<const Raster> images);

// False when the file cannot be written whole.
bool WriteFile(const std::string& path, const Bytes& bytes);

}  // namespace pictures
