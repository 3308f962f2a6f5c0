#include "unit/picture/screen_mixer.h"

#include <algorithm>
#include <utility>
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
        : video_(video), window_(window), line_(static_cast<std::size_t>(width)) {
        const int end = std::min<int>(width, window.x + window.width);
        for (int x = window.x; x < end; ++x) {
            const int column =
                window.source_x + (x - window.x) * window.source_width / window.width;
            if (column >= video.width)
                break;
            columns_.push_back(column);
        }
    }

    // The video under a row of the screen; valid until the next call.
    const std::uint32_t* Line(int y) {
        const std::uint32_t* const row = columns_.empty() ? nullptr : RowUnder(y);
        // A scaled video has many rows twice, and outside of it all lines are black.
        if (row == row_in_line_)
            return line_.data();
        row_in_line_ = row;
        if (!row) {
            std::ranges::fill(line_, 0U);
            return line_.data();
        }
        std::uint32_t* pixel = line_.data() + window_.x;
        for (const int column : columns_)
            *pixel++ = row[column];
        return line_.data();
    }

  private:
    // The video's row under a row of the screen; null when there is none.
    const std::uint32_t* RowUnder(int y) const {
        const int inside = y - window_.y;
        if (inside < 0 || inside >= window_.height)
            return nullptr;
        const int row = window_.source_y + inside * window_.source_height / window_.height;
        return row < video_.height ? &video_.pixels[video_.Offset(0, row)] : nullptr;
    }

    const Picture& video_;
    const ScalerWindow& window_;
    // Of the video, from the window's left edge on.
    std::vector<int> columns_;
    std::vector<std::uint32_t> line_;
    // Null while the line is black.
    const std::uint32_t* row_in_line_ = nullptr;
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
                  const ScalerState& scaler, Picture reused) {
    const auto pixels = graphics.pixels();
    Picture picture{graphics.width(), graphics.height(), std::move(reused.pixels)};
    if (!scaler.VideoShows()) {
        picture.pixels.assign(pixels.begin(), pixels.end());
        return picture;
    }
    picture.pixels.resize(pixels.size());
    const std::uint32_t key = PixelOf(scaler.key_color);
    const bool blends = scaler.alpha < kOpaqueAlpha;
    PlacedVideo placed(video, scaler.window, picture.width);
    // A copy: the compiler cannot know that writing a pixel does not change the picture's own.
    const int width = picture.width;
    const std::uint32_t* upper = pixels.data();
    std::uint32_t* mixed = picture.pixels.data();
    for (int y = 0; y < picture.height; ++y) {
        const std::uint32_t* const lower = placed.Line(y);
        if (blends) {
            for (int x = 0; x < width; ++x)
                mixed[x] = upper[x] == key ? lower[x] : Blend(upper[x], lower[x], scaler.alpha);
        } else {
            for (int x = 0; x < width; ++x)
                mixed[x] = upper[x] == key ? lower[x] : upper[x];
        }
        upper += width;
        mixed += width;
    }
    return picture;
}

}  // namespace unit
