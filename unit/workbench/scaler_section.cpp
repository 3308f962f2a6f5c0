#include <cstdio>

#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

std::string KeyColor(const ScalerState& scaler) {
    char text[64];
    std::snprintf(text, sizeof text, "%s, red %u green %u blue %u",
                  scaler.key_enabled ? "on" : "off", GetRValue(scaler.key_color),
                  GetGValue(scaler.key_color), GetBValue(scaler.key_color));
    return text;
}

std::string Rectangle(int x, int y, int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height) + " at " + std::to_string(x) +
           ", " + std::to_string(y);
}

}  // namespace

void DrawScalerSection(Desk& desk) {
    if (!Group(desk, "Display scaler", false))
        return;
    const ScalerState scaler = desk.unit.scaler().state();
    const ScalerWindow& window = scaler.window;
    Field(desk, "Shows", scaler.VideoShows() ? "video under the key colour" : "graphics alone",
          scaler.VideoShows() ? color::kGood : color::kText);
    Field(desk, "Handles", std::to_string(scaler.open_handles) + " open");
    Field(desk, "Path", scaler.scaler_path ? "through the scaler" : "graphics");
    Field(desk, "Selector",
          std::to_string(scaler.selector) +
              (scaler.selector == 0 ? "  composite video" : "  graphics alone"));
    Field(desk, "Alpha", std::to_string(scaler.alpha) + " of 63");
    Field(desk, "Key colour", KeyColor(scaler));
    Field(desk, "Source",
          Rectangle(window.source_x, window.source_y, window.source_width, window.source_height));
    Field(desk, "Window", Rectangle(window.x, window.y, window.width, window.height));
}

}  // namespace unit
