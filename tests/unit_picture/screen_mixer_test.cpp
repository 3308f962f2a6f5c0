#include "unit/picture/screen_mixer.h"

#include <gtest/gtest.h>

namespace tests {
namespace {

using unit::Picture;

constexpr COLORREF kKey = 0x001000;
constexpr std::uint32_t kKeyPixel = 0x001000;
constexpr std::uint32_t kInk = 0xFF8040;

// A video whose pixels tell their place.
Picture Ruler(int width, int height) {
    Picture video{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            video.pixels.push_back(static_cast<std::uint32_t>(y << 12 | x));
    return video;
}

// All key colour, with one pixel of ink and one that only looks like the key.
platform::gdi::Surface Graphics() {
    platform::gdi::Surface graphics(80, 48);
    for (int y = 0; y < 48; ++y)
        std::fill_n(graphics.row(y), 80, kKeyPixel);
    graphics.row(20)[30] = kInk;
    graphics.row(20)[31] = 0x001001;
    return graphics;
}

unit::ScalerState Shown(unit::ScalerWindow window, std::uint32_t alpha = 63) {
    unit::ScalerState scaler;
    scaler.scaler_path = true;
    scaler.alpha = alpha;
    scaler.key_enabled = true;
    scaler.key_color = kKey;
    scaler.selector = 0;
    scaler.window = window;
    return scaler;
}

struct Rect {
    int x, y, width, height;
};

unit::ScalerWindow Window(const Rect& source, const Rect& place) {
    const auto word = [](int value) { return static_cast<std::uint16_t>(value); };
    unit::ScalerWindow window{};
    window.source_x = word(source.x);
    window.source_y = word(source.y);
    window.source_width = word(source.width);
    window.source_height = word(source.height);
    window.x = word(place.x);
    window.y = word(place.y);
    window.width = word(place.width);
    window.height = word(place.height);
    return window;
}

constexpr Rect kAll{0, 0, 80, 48};

TEST(ScreenMixer, VideoShowsExactlyWhereTheKeyColourIs) {
    const Picture mixed = MixPlanes(Graphics(), Ruler(80, 48), Shown(Window(kAll, kAll)));
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 80; ++x) {
            const std::uint32_t video = static_cast<std::uint32_t>(y << 12 | x);
            const std::uint32_t expected = y != 20   ? video
                                           : x == 30 ? kInk
                                           : x == 31 ? 0x001001
                                                     : video;
            ASSERT_EQ(mixed.At(x, y), expected) << x << ' ' << y;
        }
}

TEST(ScreenMixer, TheWindowRecordCropsScalesAndPlaces) {
    const struct {
        Rect source;
        Rect place;
        int x;
        int y;
        std::uint32_t expected;
    } cases[] = {
        // Half the source on the whole screen, as the wizard crops it.
        {{10, 4, 40, 24}, kAll, 0, 0, 4U << 12 | 10},
        {{10, 4, 40, 24}, kAll, 79, 47, 27U << 12 | 49},
        // A quarter of the screen: black around it.
        {kAll, {40, 24, 40, 24}, 40, 24, 0},
        {kAll, {40, 24, 40, 24}, 79, 47, 46U << 12 | 78},
        {kAll, {40, 24, 40, 24}, 39, 24, 0},
        {kAll, {0, 0, 40, 24}, 40, 10, 0},
        {kAll, {0, 0, 40, 24}, 5, 24, 0},
        // Beyond the source, and a window that leaves the screen.
        {{60, 0, 80, 48}, kAll, 19, 1, 1U << 12 | 79},
        {{60, 0, 80, 48}, kAll, 20, 1, 0},
        {kAll, {70, 40, 800, 480}, 79, 47, 0},
        // No window set yet.
        {{}, {}, 5, 5, 0},
    };
    const platform::gdi::Surface graphics = Graphics();
    const Picture video = Ruler(80, 48);
    for (const auto& row : cases)
        EXPECT_EQ(MixPlanes(graphics, video, Shown(Window(row.source, row.place))).At(row.x, row.y),
                  row.expected)
            << row.x << ' ' << row.y;
}

TEST(ScreenMixer, AlphaBlendsWhatIsNotKeyed) {
    Picture video = Ruler(80, 48);
    std::ranges::fill(video.pixels, 0x00C864U);
    const unit::ScalerWindow whole = Window(kAll, kAll);
    // 21 of 63: a third of the ink.
    EXPECT_EQ(MixPlanes(Graphics(), video, Shown(whole, 21)).At(30, 20), 0x55B058U);
    EXPECT_EQ(MixPlanes(Graphics(), video, Shown(whole, 0)).At(30, 20), 0x00C864U);
    unit::ScalerState off = Shown(whole, 0);
    off.selector = 1;
    EXPECT_EQ(MixPlanes(Graphics(), video, off).At(0, 0), kKeyPixel);
}

}  // namespace
}  // namespace tests
