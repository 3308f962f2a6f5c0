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

unit::ScalerWindow Window(std::uint16_t source_x, std::uint16_t source_y,
                          std::uint16_t source_width, std::uint16_t source_height, std::uint16_t x,
                          std::uint16_t y, std::uint16_t width, std::uint16_t height) {
    unit::ScalerWindow window{};
    window.source_x = source_x;
    window.source_y = source_y;
    window.source_width = source_width;
    window.source_height = source_height;
    window.x = x;
    window.y = y;
    window.width = width;
    window.height = height;
    return window;
}

TEST(ScreenMixer, VideoShowsExactlyWhereTheKeyColourIs) {
    const Picture mixed =
        MixPlanes(Graphics(), Ruler(80, 48), Shown(Window(0, 0, 80, 48, 0, 0, 80, 48)));
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
    struct Case {
        unit::ScalerWindow window;
        int x;
        int y;
        std::uint32_t expected;
    };
    const Case cases[] = {
        // Half the source on the whole screen, as the wizard crops it.
        {Window(10, 4, 40, 24, 0, 0, 80, 48), 0, 0, 4U << 12 | 10},
        {Window(10, 4, 40, 24, 0, 0, 80, 48), 79, 47, 27U << 12 | 49},
        {Window(10, 4, 40, 24, 0, 0, 80, 48), 41, 0, 4U << 12 | 30},
        // A quarter of the screen: black around it.
        {Window(0, 0, 80, 48, 40, 24, 40, 24), 40, 24, 0},
        {Window(0, 0, 80, 48, 40, 24, 40, 24), 79, 47, 46U << 12 | 78},
        {Window(0, 0, 80, 48, 40, 24, 40, 24), 39, 24, 0},
        {Window(0, 0, 80, 48, 0, 0, 40, 24), 40, 10, 0},
        // Beyond the source, and a window that leaves the screen.
        {Window(60, 0, 80, 48, 0, 0, 80, 48), 19, 1, 1U << 12 | 79},
        {Window(60, 0, 80, 48, 0, 0, 80, 48), 20, 1, 0},
        {Window(0, 0, 80, 48, 70, 40, 800, 480), 79, 47, 0},
        // No window set yet.
        {Window(0, 0, 0, 0, 0, 0, 0, 0), 5, 5, 0},
    };
    const platform::gdi::Surface graphics = Graphics();
    const Picture video = Ruler(80, 48);
    for (const Case& row : cases)
        EXPECT_EQ(MixPlanes(graphics, video, Shown(row.window)).At(row.x, row.y), row.expected)
            << row.x << ' ' << row.y;
}

TEST(ScreenMixer, AlphaBlendsWhatIsNotKeyed) {
    Picture video = Ruler(80, 48);
    std::ranges::fill(video.pixels, 0x00C864U);
    const unit::ScalerWindow whole = Window(0, 0, 80, 48, 0, 0, 80, 48);
    // 21 of 63: a third of the ink.
    EXPECT_EQ(MixPlanes(Graphics(), video, Shown(whole, 21)).At(30, 20), 0x55B058U);
    EXPECT_EQ(MixPlanes(Graphics(), video, Shown(whole, 0)).At(30, 20), 0x00C864U);
    unit::ScalerState off = Shown(whole, 0);
    off.selector = 1;
    EXPECT_EQ(MixPlanes(Graphics(), video, off).At(0, 0), kKeyPixel);
}

}  // namespace
}  // namespace tests
