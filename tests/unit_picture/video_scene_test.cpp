#include "unit/picture/video_scene.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/platform_fixture.h"
#include "unit/picture/calendar.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Picture;

class VideoSceneTest : public testing::Test {
  protected:
    Platform platform_;
};

TEST_F(VideoSceneTest, LivesThirtyFramesASecondAndIsAlikeAtTheSameTime) {
    unit::VideoScene scene;
    const Picture first = scene.At(20s);
    EXPECT_EQ(first, scene.At(20s + 16ms));
    EXPECT_NE(first, scene.At(20s + 17ms));
    EXPECT_NE(first, scene.At(20s + 34ms));
    unit::VideoScene other;
    other.At(3h);
    EXPECT_EQ(first, other.At(20s));
}

// Where the date stands, the pictures of two seconds differ in its digits.
TEST_F(VideoSceneTest, CarriesDateTimeAndFrameInsideTheShownPart) {
    unit::VideoScene scene;
    const auto ink = [](const Picture& picture, int from, int to) {
        int white = 0;
        for (int y = 394; y < 394 + 22; ++y)
            for (int x = from; x < to; ++x)
                white += picture.At(x, y) == 0xF0F0F0 ? 1 : 0;
        return white;
    };
    const Picture picture = scene.At(20s);
    EXPECT_GT(ink(picture, 30, 130), 100) << "date";
    EXPECT_GT(ink(picture, 140, 220), 80) << "time";
    EXPECT_GT(ink(picture, 240, 300), 60) << "frame";
    EXPECT_EQ(ink(picture, 0, 30) + ink(picture, 310, 720), 0);
}

double Luminance(std::uint32_t pixel) {
    const auto channel = [&](unsigned shift) {
        const double value = (pixel >> shift & 0xFF) / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(16) + 0.7152 * channel(8) + 0.0722 * channel(0);
}

// The wizard's bands of text, in rows of the screen, over the part that its window record shows.
TEST_F(VideoSceneTest, LeavesTheWizardsTextsReadable) {
    struct Band {
        const char* texts;
        int top;
        int bottom;
        std::uint32_t color;
        double contrast;
    };
    const Band bands[] = {
        {"title", 12, 40, 0xFFFFFF, 7},      {"red warning", 54, 86, 0xFF0000, 4},
        {"versions", 96, 124, 0xFFFFFF, 3},  {"blue notice", 134, 152, 0x0000FF, 1.7},
        {"lines", 162, 190, 0xFFFFFF, 4.5},  {"lines below", 225, 370, 0xFFFFFF, 4.5},
        {"red line", 225, 255, 0xFF0000, 4},
    };
    unit::VideoScene scene;
    const Picture& picture = scene.At(20s);
    for (const Band& band : bands) {
        double sum = 0;
        int count = 0;
        for (int y = band.top; y < band.bottom; ++y)
            for (int x = 50; x < 380; ++x, ++count)
                sum += Luminance(picture.At(10 + x * 695 / 800, 49 + y * 375 / 480));
        const double under = sum / count + 0.05;
        const double text = Luminance(band.color) + 0.05;
        EXPECT_GE(std::max(under, text) / std::min(under, text), band.contrast) << band.texts;
    }
}

TEST(Calendar, CountsFromTheUnitsPowerOn) {
    EXPECT_EQ(unit::CarDate(0s), "2014-09-01");
    EXPECT_EQ(unit::CarTime(0s), "18:30:00");
    EXPECT_EQ(unit::CarTime(59'999'999us), "18:30:59");
    EXPECT_EQ(unit::CarTime(6h), "00:30:00");
    EXPECT_EQ(unit::CarDate(6h), "2014-09-02");
    EXPECT_EQ(unit::CarDate(720h + 6h), "2014-10-02");
}

}  // namespace
}  // namespace tests
