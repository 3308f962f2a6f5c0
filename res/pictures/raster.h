#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictures {

// Finished pixels, 0xAARRGGBB with the colours premultiplied, rows from the top.
struct Raster {
    Raster(int width_in, int height_in)
        : width(width_in),
          height(height_in),
          pixels(static_cast<std::size_t>(width_in) * static_cast<std::size_t>(height_in)) {}

    std::uint32_t& At(int x, int y) { return pixels[Index(x, y)]; }
    std::uint32_t At(int x, int y) const { return pixels[Index(x, y)]; }

    int width;
    int height;
    std::vector<std::uint32_t> pixels;

  private:
    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
};

}  // namespace pictures
