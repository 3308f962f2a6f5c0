#include "unit/picture/screen_mixer.h"

namespace unit {
namespace {

constexpr std::uint32_t kOpaque = 63;

std::uint32_t PixelOf(COLORREF color) {
    return std::uint32_t{GetRValue(color)} << 16 | std::uint32_t{GetGValue(color)} << 8 |
           std::uint32_t{GetBValue(color)};
}

// The video under a screen pixel; black outside the display window or the frame.
std::uint32_t VideoAt(const Picture& video, const ScalerWindow& window, int x, int y) {
    const int inside_x = x - window.x;
    const int inside_y = y - window.y;
    if (inside_x < 0 || inside_y < 0 || inside_x >= window.width || inside_y >= window.height)
        return 0;
    const int source_x = window.source_x + inside_x * window.source_width / window.width;
    const int source_y = window.source_y + inside_y * window.source_height / window.height;
    return source_x < video.width && source_y < video.height ? video.At(source_x, source_y) : 0;
}

std::uint32_t Blend(std::uint32_t graphics, std::uint32_t video, std::uint32_t alpha) {
    if (alpha >= kOpaque)
        return graphics;
    std::uint32_t mixed = 0;
    for (const unsigned shift : {16U, 8U, 0U}) {
        const std::uint32_t upper = (graphics >> shift) & 0xFF;
        const std::uint32_t lower = (video >> shift) & 0xFF;
        mixed |= (upper * alpha + lower * (kOpaque - alpha)) / kOpaque << shift;
    }
    return mixed;
}

}  // namespace

Picture MixPlanes(const platform::gdi::Surface& graphics, const Picture& video,
                  const ScalerState& scaler) {
    const auto pixels = graphics.pixels();
    Picture picture{graphics.width(), graphics.height(), {pixels.begin(), pixels.end()}};
    if (!scaler.VideoShows())
        return picture;
    const std::uint32_t key = PixelOf(scaler.key_color);
    auto pixel = picture.pixels.begin();
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x, ++pixel) {
            if (*pixel == key)
                *pixel = VideoAt(video, scaler.window, x, y);
            else if (scaler.alpha < kOpaque)
                *pixel = Blend(*pixel, VideoAt(video, scaler.window, x, y), scaler.alpha);
        }
    }
    return picture;
}

}  // namespace unit
