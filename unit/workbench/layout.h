#pragma once

#include <optional>

namespace unit {

struct Area {
    float x = 0;
    float y = 0;
    float width = 0;
    float height = 0;

    bool Contains(float px, float py) const {
        return px >= x && py >= y && px < x + width && py < y + height;
    }
    bool operator==(const Area&) const = default;
};

// How the unit's screen is scaled to the space that it has.
enum class Scaling {
    kWhole,   // by the largest whole factor that fits
    kSmooth,  // to fill the space
};

// The space below the screen in a window of the initial size.
inline constexpr float kInitialDockHeight = 262;

// The smallest window that the desktop is asked to allow; multiply by the scale.
inline constexpr int kMinWindowWidth = 480;
inline constexpr int kMinWindowHeight = 360;

// Where the parts of the window are, in the window's units. No width or height is below 1.
struct Layout {
    Area screen;               // the unit's screen
    std::optional<Area> dock;  // the tabs below it; a narrow window has none
    Area panel;                // the groups beside it, in a narrow window below it
    Area bar;                  // the command line at the bottom edge
};

// The screen as large as `scaling` allows, in the middle of the space. A space smaller than the
// screen is filled with either scaling. Just above a whole factor, smooth scaling takes that
// factor: the pixels stay sharp.
Area PlaceScreen(const Area& space, Scaling scaling);

// `scale` multiplies the lengths of the panel. `dock_height` and `bar_height` are what the operator
// and the bar's text want; they are limited by the window's size.
Layout PlaceAll(float width, float height, float scale, float dock_height, Scaling scaling,
                float bar_height = 0);

}  // namespace unit
