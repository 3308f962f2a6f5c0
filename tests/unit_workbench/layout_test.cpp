#include "unit/workbench/layout.h"

#include <gtest/gtest.h>

#include <ostream>
#include <tuple>

namespace unit {

void PrintTo(const Area& area, std::ostream* out) {
    *out << area.width << 'x' << area.height << " at " << area.x << ',' << area.y;
}

}  // namespace unit

namespace tests {
namespace {

using unit::Area;
using unit::Scaling;

TEST(Layout, TheScreenScalesByWholeOrSmoothFactors) {
    const std::tuple<Area, Scaling, Area> cases[] = {
        {{0, 0, 800, 480}, Scaling::kWhole, {0, 0, 800, 480}},
        {{10, 20, 900, 600}, Scaling::kWhole, {60, 80, 800, 480}},
        {{10, 20, 1000, 600}, Scaling::kSmooth, {10, 20, 1000, 600}},
        {{0, 0, 1599, 2000}, Scaling::kWhole, {399, 760, 800, 480}},
        {{0, 0, 1600, 2000}, Scaling::kWhole, {0, 520, 1600, 960}},
        {{0, 0, 1920, 1080}, Scaling::kSmooth, {60, 0, 1800, 1080}},
        // Less room than the screen has: smooth either way.
        {{0, 0, 400, 480}, Scaling::kWhole, {0, 120, 400, 240}},
        {{0, 0, 0, 0}, Scaling::kSmooth, {0, 0, 0, 0}},
    };
    for (const auto& [room, scaling, expected] : cases)
        EXPECT_EQ(unit::PlaceScreen(room, scaling), expected);
}

TEST(Layout, PartsFillTheWindowWithoutOverlap) {
    for (const float width : {1280.0F, 1920.0F, 600.0F})
        for (const float height : {800.0F, 400.0F})
            for (const float dock : {0.0F, 262.0F, 5000.0F}) {
                SCOPED_TRACE(testing::Message() << width << ' ' << height << ' ' << dock);
                const unit::Layout layout = unit::PlaceAll(width, height, 1, dock, Scaling::kWhole);
                EXPECT_EQ(layout.panel.x, layout.dock.width);
                EXPECT_EQ(layout.panel.x + layout.panel.width, width);
                EXPECT_EQ(layout.dock.y + layout.dock.height, layout.bar.y);
                EXPECT_EQ(layout.bar.y + layout.bar.height, height);
                EXPECT_LE(layout.screen.y + layout.screen.height, layout.dock.y);
                EXPECT_LE(layout.screen.x + layout.screen.width, layout.panel.x);
            }
    EXPECT_EQ(unit::PlaceAll(1280, 800, 1, 262, Scaling::kWhole).screen.width, 800);
}

}  // namespace
}  // namespace tests
