#include "unit/workbench/layout.h"

#include <algorithm>
#include <cmath>

#include "platform/window/screen.h"

namespace unit {
namespace {

constexpr float kPanelWidth = 436;
constexpr float kBarHeight = 34;
constexpr float kMargin = 10;
constexpr float kMinDockHeight = 90;
constexpr float kMinScreenSpace = 120;
// Below this width the parts are stacked.
constexpr float kMinWidthSideBySide = 800;
// In a stacked layout the most that the screen and the bar take of the height.
constexpr float kStackedScreenShare = 0.55F;
constexpr float kBarShare = 0.4F;
// How far above a whole factor smooth scaling still takes the whole factor.
constexpr float kSharpWithin = 0.06F;

Area AtLeastOne(Area area) {
    area.width = std::max(1.0F, area.width);
    area.height = std::max(1.0F, area.height);
    return area;
}

}  // namespace

Area PlaceScreen(const Area& space, Scaling scaling) {
    constexpr float kWidth = platform::window::kScreenWidth;
    constexpr float kHeight = platform::window::kScreenHeight;
    float factor = std::max(0.0F, std::min(space.width / kWidth, space.height / kHeight));
    const float whole = std::floor(factor);
    if (whole >= 1 && (scaling == Scaling::kWhole || factor - whole < kSharpWithin))
        factor = whole;
    const float width = std::floor(kWidth * factor);
    const float height = std::floor(kHeight * factor);
    return {std::floor(space.x + (space.width - width) / 2),
            std::floor(space.y + (space.height - height) / 2), width, height};
}

Layout PlaceAll(float width, float height, float scale, float dock_height, Scaling scaling,
                float bar_height) {
    Layout layout;
    const float margin = kMargin * scale;
    const float least_bar = kBarHeight * scale;
    // A bar that grows takes its space from the dock or the panel: the screen stays where it is.
    const auto place_bar = [&](float most) {
        const float bar = std::min(std::max(bar_height, least_bar), std::max(most, least_bar));
        layout.bar = AtLeastOne({0, height - bar, width, bar});
        return height - bar;
    };
    if (width < kMinWidthSideBySide * scale) {
        const float most = height * kStackedScreenShare;
        layout.screen = AtLeastOne(
            PlaceScreen({margin, margin, width - 2 * margin, most - 2 * margin}, scaling));
        const float above = place_bar(height * kBarShare);
        const float top = layout.screen.y + layout.screen.height + margin;
        layout.panel = AtLeastOne({0, top, width, above - top});
        return layout;
    }
    const float panel = kPanelWidth * scale;
    const float left = width - panel;
    const float least_dock = kMinDockHeight * scale;
    const float most = std::max(least_dock, height - least_bar - kMinScreenSpace * scale);
    const float dock = std::clamp(dock_height, least_dock, most);
    const float dock_top = height - least_bar - dock;
    const float above = place_bar(least_bar + dock / 2);
    layout.panel = AtLeastOne({left, 0, panel, above});
    layout.dock = AtLeastOne({0, dock_top, left, above - dock_top});
    layout.screen = AtLeastOne(
        PlaceScreen({margin, margin, left - 2 * margin, dock_top - 2 * margin}, scaling));
    return layout;
}

}  // namespace unit
