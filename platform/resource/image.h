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

// A bitmap of the program's resources as 0x00RRGGBB. Without it, the last error is the one of
// FindResourceW, ERROR_INVALID_DATA when it is damaged, or ERROR_NOT_SUPPORTED when its form is
// not known (1, 4, 8, 16, 24 and 32 bits a pixel are, uncompressed). Any thread.
std::optional<DecodedImage> DecodeBitmap(LPCWSTR name);

// The image nearest to that size from a group icon, as 0xAARRGGBB, not premultiplied; it is not
// scaled. A size of 0 stands for that of the group's first image. Errors as for bitmaps.
std::optional<DecodedImage> DecodeIcon(LPCWSTR name, int width, int height);

}  // namespace platform::resource
