#include "unit/picture/backdrop.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

#include "unit/picture/shade.h"

namespace unit {
namespace {

constexpr int kStars = 60;
constexpr int kStarsEnd = 100;
constexpr int kTownLights = 26;

// Dark above, where the wizard's red line stands, with a warm glow low over the hills, behind its
// blue notice, which would drown in the dark.
std::uint32_t Sky(int y) {
    const double depth = static_cast<double>(y) / kHorizon;
    const double rise = std::clamp((depth - 0.57) / 0.25, 0.0, 1.0);
    const double glow = rise * rise * (3 - 2 * rise);
    return Shade(8 + 14 * depth + 163 * glow, 12 + 16 * depth + 88 * glow,
                 30 + 24 * depth + 40 * glow);
}

// How high the hills stand over the horizon in a column; two chains, the nearer one lower.
int FarHill(int x) {
    return static_cast<int>(33 + 4 * std::sin(x / 71.0) + 3 * std::sin(x / 23.0 + 1));
}
int NearHill(int x) {
    return static_cast<int>(13 + 6 * std::sin(x / 53.0 + 2) + 4 * std::sin(x / 17.0));
}

}  // namespace

void DrawBackdrop(Picture& picture) {
    const auto set = [&](int x, int y, std::uint32_t color) {
        picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                       static_cast<std::size_t>(x)] = color;
    };
    for (int y = 0; y < kHorizon; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const int height = kHorizon - y;
            if (height <= NearHill(x))
                set(x, y, Shade(14, 17, 24));
            else if (height <= FarHill(x))
                set(x, y, Shade(44, 33, 44));
            else
                set(x, y, Sky(y));
        }
    }
    // A generator whose numbers are alike everywhere, and no distribution, whose are not.
    std::mt19937 random(7);
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    for (int star = 0; star < kStars; ++star) {
        const double light = 40 + below(70);
        set(below(picture.width), below(kStarsEnd), Shade(light, light, light * 1.15));
    }
    for (int lamp = 0; lamp < kTownLights; ++lamp)
        set(430 + below(180), kHorizon - 3 - below(8), Shade(150 + below(60), 120, 60));
}

}  // namespace unit
