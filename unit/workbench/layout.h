#pragma once

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

// Where the parts of the window are, in the window's units.
struct Layout {
    Area screen;  // the unit's screen
    Area dock;    // the tabs below it
    Area panel;   // the groups beside it
    Area bar;     // the command line at the bottom edge
};

// The screen as large as `scaling` allows, in the middle of the space. A space smaller than the
// screen is filled with either scaling.
Area PlaceScreen(const Area& space, Scaling scaling);

// `scale` multiplies the lengths of the panel. `dock_height` is what the operator wants; it is
// limited by the window's size.
Layout PlaceAll(float width, float height, float scale, float dock_height, Scaling scaling);

}  // namespace unit
