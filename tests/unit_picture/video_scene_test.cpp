#include "unit/picture/video_scene.h"

#include <gtest/gtest.h>

#include "tests/support/platform_fixture.h"
#include "unit/picture/calendar.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Picture;

TEST(VideoScene, LivesThirtyFramesASecondAndIsAlikeAtTheSameTime) {
    const Platform platform;
    unit::VideoScene scene;
    const Picture first = scene.At(20s);
    EXPECT_EQ(first, scene.At(20s + 16ms));
    EXPECT_NE(first, scene.At(20s + 17ms));
    EXPECT_NE(first, scene.At(20s + 34ms));
    unit::VideoScene other;
    other.At(3h);
    EXPECT_EQ(first, other.At(20s));
    // Whatever is on its way out of the picture, at the last pixel too.
    for (std::chrono::milliseconds time = 20s; time < 300s; time += 17ms)
        EXPECT_EQ(scene.At(time).width, 720);
}

TEST(VideoScene, CarriesDateTimeAndFrameInsideTheShownPart) {
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
    EXPECT_GT(ink(240, 300), 60) << "frame";
    EXPECT_EQ(ink(0, 30) + ink(310, 720), 0);
}

TEST(Calendar, CountsFromTheUnitsPowerOn) {
    EXPECT_EQ(unit::CarDate(0s), "2014-09-01");
    EXPECT_EQ(unit::CarTime(59'999'999us), "18:30:59");
    EXPECT_EQ(unit::CarTime(6h), "00:30:00");
    EXPECT_EQ(unit::CarDate(720h + 6h), "2014-10-02");
}

}  // namespace
}  // namespace tests
