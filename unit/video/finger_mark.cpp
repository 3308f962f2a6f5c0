#include "unit/video/finger_mark.h"

#include <algorithm>
#include <cmath>

namespace unit {
namespace {

constexpr int kRadius = 22;
constexpr double kEdge = 3;

// Mixes so much of the colour into the pixel.
std::uint32_t Mixed(std::uint32_t pixel, std::uint32_t color, double share) {
    std::uint32_t mixed = 0;
    for (const int shift : {0, 8, 16}) {
        const double below = (pixel >> shift) & 0xFF;
        const double above = (color >> shift) & 0xFF;
        mixed |= static_cast<std::uint32_t>(below + (above - below) * share) << shift;
    }
    return mixed;
}

}  // namespace

void DrawFingerMark(Picture& picture, int x, int y) {
    constexpr std::uint32_t kFill = 0xFFFFFF;
    constexpr std::uint32_t kDark = 0x203040;
    for (int row = std::max(0, y - kRadius); row <= std::min(picture.height - 1, y + kRadius);
         ++row)
        for (int column = std::max(0, x - kRadius);
             column <= std::min(picture.width - 1, x + kRadius); ++column) {
            // Smooth over a pixel at the outside.
            const double inside = std::min(1.0, kRadius - std::hypot(column - x, row - y));
            if (inside <= 0)
                continue;
            const bool edge = std::hypot(column - x, row - y) > kRadius - kEdge;
            std::uint32_t& pixel = picture.pixels[picture.Offset(column, row)];
            pixel = Mixed(pixel, edge ? kDark : kFill, (edge ? 0.8 : 0.55) * inside);
        }
}

}  // namespace unit
