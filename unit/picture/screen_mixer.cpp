#include "unit/picture/screen_mixer.h"

#include <algorithm>
#include <vector>

namespace unit {
namespace {

std::uint32_t PixelOf(COLORREF color) {
    return std::uint32_t{GetRValue(color)} << 16 | std::uint32_t{GetGValue(color)} << 8 |
           std::uint32_t{GetBValue(color)};
}

// The video as the window record places and scales it; black outside the display window and the
// frame. The columns are calculated in advance: a picture is mixed many times a second.
class PlacedVideo {
  public:
    PlacedVideo(const Picture& video, const ScalerWindow& window, int width)
        : video_(video), window_(window), columns_(static_cast<std::size_t>(width), kNone) {
        const int end = std::min<int>(width, window.x + window.width);
        for (int x = window.x; x < end; ++x) {
            const int column =
                window.source_x + (x - window.x) * window.source_width / window.width;
            if (column < video.width)
                columns_[static_cast<std::size_t>(x)] = column;
        }
    }

    // The video's row under a row of the screen; null when there is none.
    const std::uint32_t* RowUnder(int y) const {
        const int inside = y - window_.y;
        if (inside < 0 || inside >= window_.height)
            return nullptr;
        const int row = window_.source_y + inside * window_.source_height / window_.height;
        return row < video_.height ? &video_.pixels[video_.Offset(0, row)] : nullptr;
    }

    std::uint32_t At(const std::uint32_t* row, int x) const {
        const int column = columns_[static_cast<std::size_t>(x)];
        return row && column != kNone ? row[column] : 0;
    }

  private:
    static constexpr int kNone = -1;

    const Picture& video_;
    const ScalerWindow& window_;
    std::vector<int> columns_;
};

std::uint32_t Blend(std::uint32_t graphics, std::uint32_t video, std::uint32_t alpha) {
    std::uint32_t mixed = 0;
    for (const unsigned shift : {16U, 8U, 0U}) {
        const std::uint32_t upper = (graphics >> shift) & 0xFF;
        const std::uint32_t lower = (video >> shift) & 0xFF;
        mixed |= (upper * alpha + lower * (kOpaqueAlpha - alpha)) / kOpaqueAlpha << shift;
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
    const bool blends = scaler.alpha < kOpaqueAlpha;
    const PlacedVideo placed(video, scaler.window, picture.width);
    std::uint32_t* pixel = picture.pixels.data();
    for (int y = 0; y < picture.height; ++y) {
        const std::uint32_t* const row = placed.RowUnder(y);
        for (int x = 0; x < picture.width; ++x, ++pixel) {
            if (*pixel == key)
                *pixel = placed.At(row, x);
            else if (blends)
                *pixel = Blend(*pixel, placed.At(row, x), scaler.alpha);
        }
    }
    return picture;
}

}  // namespace unit
