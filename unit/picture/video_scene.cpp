#include "unit/picture/video_scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace unit {
namespace {

constexpr int kHorizon = 210;
constexpr int kFramesASecond = 30;
constexpr double kMarkLength = 2.0;
constexpr double kSpeedPerFrame = 0.12;

std::uint32_t Rgb(double red, double green, double blue) {
    const auto channel = [](double value) {
        return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0));
    };
    return channel(red) << 16 | channel(green) << 8 | channel(blue);
}

// Dusk: dark above, where the wizard's red line stands, with a glow low over the road, behind its
// blue notice.
std::uint32_t Sky(int y) {
    const double depth = static_cast<double>(y) / kHorizon;
    const double glow = std::max(0.0, (depth - 0.5) * 2);
    return Rgb(8 + 14 * depth + 105 * glow, 12 + 16 * depth + 78 * glow,
               30 + 24 * depth + 60 * glow);
}

// One row of the road: grass, verge lines, tarmac and the middle line, filled span by span.
void DrawGround(std::uint32_t* row, int y, double travelled) {
    const double nearness = (y - kHorizon + 1.0) / (kVideoHeight - kHorizon);
    const double light = 18 + 34 * nearness;
    const auto column = [&](double across) {
        return std::clamp(static_cast<int>((1 + across * nearness) * kVideoWidth / 2), 0,
                          kVideoWidth);
    };
    const auto fill = [&](double from, double to, std::uint32_t color) {
        std::fill(row + column(from), row + column(to), color);
    };
    const std::uint32_t line = Rgb(light * 2.4, light * 2.4, light * 2.4);
    std::fill(row, row + kVideoWidth, Rgb(light * 0.35, light * 0.55, light * 0.35));
    fill(-0.95, 0.95, Rgb(light, light, light * 1.08));
    fill(-0.875, -0.825, line);
    fill(0.825, 0.875, line);
    if (std::fmod(1.0 / nearness + travelled, kMarkLength) < kMarkLength / 2)
        fill(-0.02, 0.02, Rgb(light * 3, light * 3, light * 2.6));
}

}  // namespace

Picture VideoFrame(std::chrono::microseconds time) {
    const std::int64_t frame = time.count() * kFramesASecond / 1'000'000;
    const double travelled = std::fmod(static_cast<double>(frame) * kSpeedPerFrame, kMarkLength);
    Picture picture = NoSignal();
    std::uint32_t* row = picture.pixels.data();
    for (int y = 0; y < kVideoHeight; ++y, row += kVideoWidth) {
        if (y < kHorizon)
            std::fill(row, row + kVideoWidth, Sky(y));
        else
            DrawGround(row, y, travelled);
    }
    return picture;
}

Picture NoSignal() {
    return {kVideoWidth, kVideoHeight,
            std::vector<std::uint32_t>(static_cast<std::size_t>(kVideoWidth) * kVideoHeight, 0)};
}

}  // namespace unit
