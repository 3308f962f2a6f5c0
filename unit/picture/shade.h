#pragma once

#include <algorithm>
#include <cstdint>

namespace unit {

// A pixel of that red, green and blue, each taken to 0 ... 255.
inline std::uint32_t Shade(double red, double green, double blue) {
    const auto channel = [](double value) {
        return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0));
    };
    return channel(red) << 16 | channel(green) << 8 | channel(blue);
}

}  // namespace unit
