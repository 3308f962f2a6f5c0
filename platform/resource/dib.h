#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "platform/resource/image.h"

namespace platform::resource {

// Decodes a bitmap in memory: BITMAPINFOHEADER, colours, rows. Errors as in DecodeBitmap. Any input
// is safe and takes at most 32 times its size in memory, which guards against decompression bombs.
std::optional<DecodedImage> DecodeDib(std::span<const std::byte> bytes);

// The same for an icon, as 0xAARRGGBB; its header counts the rows of the mask too.
std::optional<DecodedImage> DecodeIconDib(std::span<const std::byte> bytes);

}  // namespace platform::resource
