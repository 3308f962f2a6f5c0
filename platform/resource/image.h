#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace platform::resource {

// Pixels in rows from the top, no padding. `bits_per_pixel` is that of the resource.
struct DecodedImage {
    int width = 0;
    int height = 0;
    int bits_per_pixel = 0;
    std::vector<std::uint32_t> pixels;
};

// A bitmap of the program's resources as 0x00RRGGBB. Nothing with the last error of FindResourceW,
// ERROR_INVALID_DATA when it is damaged, or ERROR_NOT_SUPPORTED for another form than 1, 4, 8, 16,
// 24 or 32 bits a pixel, uncompressed. Any thread.
std::optional<DecodedImage> DecodeBitmap(LPCWSTR name);

// The image of a group icon that is nearest to that size, as 0xAARRGGBB, neither premultiplied nor
// scaled. A size of 0 means the size of the group's first image. Errors as for bitmaps.
std::optional<DecodedImage> DecodeIcon(LPCWSTR name, int width, int height);

}  // namespace platform::resource
