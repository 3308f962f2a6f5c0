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

// How the unit's screen fills the room that it has.
enum class Scaling {
    kWhole,   // whole multiples of its pixels, as large as there is room
    kSmooth,  // all of the room
};

// The dock's height at first: what lies below the screen in a window of the usual size.
inline constexpr float kUsualDock = 262;

// Where things are in the window, in its own units.
struct Layout {
    Area screen;  // the unit's screen
    Area dock;    // below it: what passes by
    Area panel;   // beside it: what can be done
    Area bar;     // at the bottom edge: the command line
};

// The screen as large as `scaling` allows within the room, in its middle. A room smaller than the
// screen is filled smoothly either way.
Area PlaceScreen(const Area& room, Scaling scaling);

// `scale` multiplies the lengths of the panel; `dock_height` is what the user wants and is kept
// within what the window can give.
Layout PlaceAll(float width, float height, float scale, float dock_height, Scaling scaling);

}  // namespace unit
