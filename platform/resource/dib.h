#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "platform/resource/image.h"

namespace platform::resource {

// A bitmap in memory: BITMAPINFOHEADER, colours, rows. Errors as in DecodeBitmap. Any input is
// safe, and asks for no more than 32 bytes of memory for each of its own.
std::optional<DecodedImage> DecodeDib(std::span<const std::byte> bytes);

// The same of an icon, whose header counts the rows of the mask too, as 0xAARRGGBB.
std::optional<DecodedImage> DecodeIconDib(std::span<const std::byte> bytes);

}  // namespace platform::resource
