#include "unit/picture/road.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "unit/picture/backdrop.h"
#include "unit/picture/shade.h"

namespace unit {
namespace {

constexpr double kMarkPeriod = 2.0;
constexpr double kPostPeriod = 4.0;
constexpr double kFarthestPost = 24.0;
constexpr double kPostPlace = 1.15;
constexpr double kCarDistance = 7.0;
constexpr double kCarPlace = 0.42;

// A rectangle, clipped to the picture.
void Fill(Picture& picture, double left, double top, double right, double bottom,
          std::uint32_t color) {
    const auto within = [](double value, int limit) {
        return std::clamp(static_cast<int>(std::lround(value)), 0, limit);
    };
    const int from = within(left, picture.width);
    const int to = within(right, picture.width);
    for (int y = within(top, picture.height); y < within(bottom, picture.height); ++y) {
        std::uint32_t* const row = &picture.pixels[picture.Offset(0, y)];
        std::fill(row + from, row + to, color);
    }
}

// One row of the road: grass, verge lines, tarmac and the middle line, filled span by span.
void DrawRow(std::uint32_t* row, int width, double nearness, double travelled) {
    const double light = 16 + 30 * nearness;
    const auto column = [&](double across) {
        return std::clamp(static_cast<int>((1 + across * nearness) * width / 2), 0, width);
    };
    const auto fill = [&](double from, double to, std::uint32_t color) {
        std::fill(row + column(from), row + column(to), color);
    };
    const std::uint32_t line = Shade(light * 2.4, light * 2.4, light * 2.4);
    std::fill(row, row + width, Shade(light * 0.35, light * 0.55, light * 0.35));
    fill(-0.95, 0.95, Shade(light, light, light * 1.08));
    fill(-0.875, -0.825, line);
    fill(0.825, 0.875, line);
    if (std::fmod(1.0 / nearness + travelled, kMarkPeriod) < kMarkPeriod / 2)
        fill(-0.02, 0.02, Shade(light * 3, light * 3, light * 2.6));
}

// Things on the road are drawn from far to near, each as large as its distance makes it.
struct Place {
    double x;
    double y;
    double size;
};
Place At(const Picture& picture, double across, double distance) {
    const double nearness = 1 / distance;
    return {(1 + across * nearness) * picture.width / 2,
            kHorizon + (picture.height - kHorizon) * nearness, picture.width / 2.0 * nearness};
}

void DrawPosts(Picture& picture, double travelled) {
    const double first = kPostPeriod - std::fmod(travelled, kPostPeriod);
    for (double distance = first + kFarthestPost; distance > 0.9; distance -= kPostPeriod) {
        for (const double side : {-kPostPlace, kPostPlace}) {
            const Place foot = At(picture, side, distance);
            const double half = foot.size * 0.018;
            const double top = foot.y - foot.size * 0.24;
            const double light = 40 + 60 / distance;
            Fill(picture, foot.x - half, top, foot.x + half, foot.y, Shade(light, light, light));
            Fill(picture, foot.x - half, top + half, foot.x + half, top + half * 4,
                 Shade(light * 2, light * 1.1, light * 0.3));
        }
    }
}

void DrawCarAhead(Picture& picture, double travelled) {
    const double sway = 0.03 * std::sin(travelled / 9);
    const Place foot = At(picture, kCarPlace + sway, kCarDistance + std::sin(travelled / 31));
    const double half = foot.size * 0.26;
    const auto part = [&](double left, double top, double right, double bottom,
                          std::uint32_t color) {
        Fill(picture, foot.x + left * half, foot.y + top * half, foot.x + right * half,
             foot.y + bottom * half, color);
    };
    part(-0.9, -0.15, 0.9, 0.0, Shade(4, 4, 5));
    part(-1.0, -0.9, 1.0, -0.15, Shade(24, 26, 32));
    part(-0.75, -1.5, 0.75, -0.9, Shade(20, 22, 28));
    part(-0.62, -1.38, 0.62, -0.95, Shade(46, 42, 58));
    part(-0.95, -0.75, -0.6, -0.5, Shade(190, 22, 16));
    part(0.6, -0.75, 0.95, -0.5, Shade(190, 22, 16));
}

}  // namespace

void DrawRoad(Picture& picture, double travelled) {
    std::uint32_t* row = &picture.pixels[picture.Offset(0, kHorizon)];
    for (int y = kHorizon; y < picture.height; ++y, row += picture.width)
        DrawRow(row, picture.width, (y - kHorizon + 1.0) / (picture.height - kHorizon), travelled);
    DrawCarAhead(picture, travelled);
    DrawPosts(picture, travelled);
}

}  // namespace unit
