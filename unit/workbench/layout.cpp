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

}  // namespace

Area PlaceScreen(const Area& space, Scaling scaling) {
    constexpr float kWidth = platform::window::kScreenWidth;
    constexpr float kHeight = platform::window::kScreenHeight;
    float factor = std::max(0.0F, std::min(space.width / kWidth, space.height / kHeight));
    if (scaling == Scaling::kWhole && factor >= 1)
        factor = std::floor(factor);
    const float width = std::floor(kWidth * factor);
    const float height = std::floor(kHeight * factor);
    return {std::floor(space.x + (space.width - width) / 2),
            std::floor(space.y + (space.height - height) / 2), width, height};
}

Layout PlaceAll(float width, float height, float scale, float dock_height, Scaling scaling) {
    Layout layout;
    const float panel = std::min(kPanelWidth * scale, width);
    const float bar = kBarHeight * scale;
    const float margin = kMargin * scale;
    const float left = width - panel;
    const float most = std::max(kMinDockHeight * scale, height - bar - kMinScreenSpace * scale);
    const float dock = std::clamp(dock_height, kMinDockHeight * scale, most);
    layout.panel = {left, 0, panel, height - bar};
    layout.bar = {0, height - bar, width, bar};
    layout.dock = {0, height - bar - dock, left, dock};
    layout.screen =
        PlaceScreen({margin, margin, left - 2 * margin, height - bar - dock - 2 * margin}, scaling);
    return layout;
}

}  // namespace unit
