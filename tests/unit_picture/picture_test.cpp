#include <gtest/gtest.h>

#include "tests/support/platform_fixture.h"
#include "unit/picture/calendar.h"
#include "unit/picture/screen_mixer.h"
#include "unit/picture/video_scene.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Picture;

constexpr COLORREF kKey = 0x001000;
constexpr std::uint32_t kKeyPixel = 0x001000;
constexpr std::uint32_t kInk = 0xFF8040;

// A video where each pixel contains its place.
Picture Ruler(int width, int height) {
    Picture video{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            video.pixels.push_back(static_cast<std::uint32_t>(y << 12 | x));
    return video;
}

// A plane of the key colour, with one pixel of ink and one that is almost the key colour.
platform::gdi::Surface Graphics() {
    platform::gdi::Surface graphics(80, 48);
    for (int y = 0; y < 48; ++y)
        std::fill_n(graphics.row(y), 80, kKeyPixel);
    graphics.row(20)[30] = kInk;
    graphics.row(20)[31] = 0x001001;
    return graphics;
}

struct Rect {
    std::uint16_t x, y, width, height;
};
constexpr Rect kAll{0, 0, 80, 48};

unit::ScalerState Shown(const Rect& source = kAll, const Rect& place = kAll,
                        std::uint32_t alpha = 63) {
    const auto& [from_x, from_y, from_width, from_height] = source;
    const auto& [x, y, width, height] = place;
    return {
        .scaler_path = true,
        .alpha = alpha,
        .key_enabled = true,
        .key_color = kKey,
        .selector = 0,
        .window = {0, from_x, from_y, from_width, from_height, 0, 0, x, y, width, height, {}, {}}};
}

TEST(ScreenMixer, ShowsVideoExactlyWhereTheKeyColourIs) {
    Picture expected = Ruler(80, 48);
    expected.pixels[20 * 80 + 30] = kInk;
    expected.pixels[20 * 80 + 31] = 0x001001;
    EXPECT_EQ(MixPlanes(Graphics(), Ruler(80, 48), Shown()), expected);
    unit::ScalerState off = Shown();
    off.selector = 1;
    EXPECT_EQ(MixPlanes(Graphics(), Ruler(80, 48), off).At(0, 0), kKeyPixel);
}

TEST(ScreenMixer, CropsScalesAndPlacesByTheWindowRecord) {
    const struct {
        Rect source;
        Rect place;
        int x;
        int y;
        std::uint32_t expected;
    } cases[] = {
        // Half of the source on the whole screen, like the wizard's crop.
        {{10, 4, 40, 24}, kAll, 0, 0, 4U << 12 | 10},
        {{10, 4, 40, 24}, kAll, 79, 47, 27U << 12 | 49},
        // On a quarter of the screen, with black around it.
        {kAll, {40, 24, 40, 24}, 40, 24, 0},
        {kAll, {40, 24, 40, 24}, 79, 47, 46U << 12 | 78},
        {kAll, {40, 24, 40, 24}, 39, 24, 0},
        {kAll, {0, 0, 40, 24}, 40, 10, 0},
        {kAll, {0, 0, 40, 24}, 5, 24, 0},
        // A crop beyond the source, and a window beyond the screen.
        {{60, 0, 80, 48}, kAll, 19, 1, 1U << 12 | 79},
        {{60, 0, 80, 48}, kAll, 20, 1, 0},
        {kAll, {70, 40, 800, 480}, 79, 47, 0},
        // No window yet.
        {{}, {}, 5, 5, 0},
    };
    for (const auto& [source, place, x, y, expected] : cases)
        EXPECT_EQ(MixPlanes(Graphics(), Ruler(80, 48), Shown(source, place)).At(x, y), expected)
            << x << ' ' << y;
}

TEST(ScreenMixer, BlendsOtherColoursByAlpha) {
    Picture video = Ruler(80, 48);
    std::ranges::fill(video.pixels, 0x00C864U);
    // 21 of 63: a third of the ink.
    EXPECT_EQ(MixPlanes(Graphics(), video, Shown(kAll, kAll, 21)).At(30, 20), 0x55B058U);
    EXPECT_EQ(MixPlanes(Graphics(), video, Shown(kAll, kAll, 0)).At(30, 20), 0x00C864U);
}

TEST(VideoScene, ShowsTheSamePictureAtTheSameTimeAndAnotherInTheNextField) {
    const Platform platform;
    unit::VideoScene scene;
    const Picture first = scene.At(20s);
    EXPECT_EQ(first, scene.At(20s + 16ms));
    EXPECT_NE(first, scene.At(20s + 17ms));
    unit::VideoScene other;
    other.At(3h);
    EXPECT_EQ(first, other.At(20s));
    // Everything that leaves the picture is clipped; the sanitizers watch.
    for (std::chrono::milliseconds time = 20s; time < 300s; time += 17ms)
        EXPECT_EQ(scene.At(time).width, 720);
}

TEST(VideoScene, ShowsDateTimeAndFrameNumber) {
    const Platform platform;
    unit::VideoScene scene;
    const Picture picture = scene.At(20s);
    const auto ink = [&picture](int from, int to) {
        int white = 0;
        for (int y = 394; y < 394 + 22; ++y)
            for (int x = from; x < to; ++x)
                white += picture.At(x, y) == 0xF0F0F0 ? 1 : 0;
        return white;
    };
    EXPECT_GT(ink(30, 130), 100) << "date";
    EXPECT_GT(ink(140, 220), 80) << "time";
    EXPECT_GT(ink(240, 300), 60) << "frame number";
    EXPECT_EQ(ink(0, 30) + ink(310, 720), 0);
}

TEST(Calendar, StartsWhenTheUnitIsPoweredOn) {
    EXPECT_EQ(unit::CarDate(0s), "2014-09-01");
    EXPECT_EQ(unit::CarTime(59'999'999us), "18:30:59");
    EXPECT_EQ(unit::CarTime(6h), "00:30:00");
    EXPECT_EQ(unit::CarDate(720h + 6h), "2014-10-02");
}

}  // namespace
}  // namespace tests
