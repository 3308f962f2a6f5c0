#include <gtest/gtest.h>

#include <tuple>

#include "tests/support/platform_fixture.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/history.h"
#include "unit/workbench/layout.h"
#include "unit/workbench/picture_meter.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/text_filter.h"

// What the window is made of, without a window.

namespace tests {
namespace {

using unit::Area;
using unit::LineBytes;
using unit::Scaling;
using enum unit::Direction;

TEST(History, FilesWhatHappensAtTheEdges) {
    Platform platform;
    unit::EventHub hub;
    unit::History history(hub);
    EXPECT_FALSE(history.Update());
    hub.Publish(unit::LineLogged{"first"});
    // A report of 57 percent in two pieces, and one whose checksum is wrong.
    hub.Publish(LineBytes{kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00}});
    hub.Publish(LineBytes{kToUnit, {0x01, 0x39, 0x01, 0xE7}});
    hub.Publish(LineBytes{kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00, 0x01, 0x3A, 0x00, 0x00}});
    hub.Publish(unit::CardMoved{true, "/somewhere"});
    hub.Publish(unit::PowerRequested{L"_All_APP_PowerSuspend_Request_"});
    hub.Publish(unit::BroadcastPosted{L"_PowerSuspend_Acknowledge_", 0xC000, 0, 0});
    EXPECT_TRUE(history.log().entries().empty()) << "notes are filed by Update alone";
    EXPECT_TRUE(history.Update());
    EXPECT_EQ(history.log().entries().at(0).text, "first");
    EXPECT_TRUE(history.traffic().entries().at(0).checksum_good());
    EXPECT_FALSE(history.traffic().entries().at(1).checksum_good());
    ASSERT_EQ(history.percents().count(), 1U);
    EXPECT_EQ(history.percents().entries()[0].percent, 57);
    EXPECT_EQ(history.card_folder(), "/somewhere");
    EXPECT_EQ(history.words().entries().at(0).text, "suspend request");
    EXPECT_EQ(history.words().entries().at(1).text, "suspend acknowledged");
    // While nobody files them, so many notes and no more.
    for (int i = 0; i < 60'000; ++i)
        hub.Publish(unit::LineLogged{"more"});
    history.Update();
    EXPECT_EQ(history.log().count(), 50'001U);
}

TEST(History, KeepsTheLatestAndCountsAll) {
    unit::Latest<int, 3> latest;
    for (int value = 0; value < 5; ++value)
        latest.Add(value);
    EXPECT_EQ(latest.entries(), (std::deque<int>{2, 3, 4}));
    EXPECT_EQ(latest.dropped(), 2U);
    latest.Clear();
    latest.Add(9);
    EXPECT_EQ(latest.dropped(), 5U);
    EXPECT_EQ(latest.count(), 6U);
}

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
        EXPECT_EQ(unit::PlaceScreen(room, scaling), expected) << room.width << 'x' << room.height;
}

TEST(Layout, PartsFillTheWindowWithoutOverlap) {
    for (const auto& [width, height] :
         {std::pair(1280.0F, 800.0F), {1920.0F, 800.0F}, {600.0F, 400.0F}})
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
}

TEST(TextFilter, WantsAllWordsAndNoneBehindAMinus) {
    for (const char* const passes :
         {"", "  ", "reset", "RESET", "dvr reset", "-suspend dvr", "-", "Reset_DVR()"})
        EXPECT_TRUE(unit::Passes("CMainFrame::Reset_DVR()", passes)) << passes;
    for (const char* const fails : {"dvr suspend", "-reset", "reset -dvr"})
        EXPECT_FALSE(unit::Passes("CMainFrame::Reset_DVR()", fails)) << fails;
}

TEST(FilteredList, FollowsTheListAsItGrowsAndDrops) {
    const std::vector<std::string> all = {"a1", "b2", "a3", "b4", "a5"};
    unit::FilteredList list;
    const auto update = [&](const char* filter, std::uint64_t dropped, std::uint64_t count) {
        list.Update(filter, dropped, count,
                    [&](std::size_t index) { return unit::Passes(all[index + dropped], filter); });
        return list.numbers();
    };
    using Numbers = std::vector<std::uint64_t>;
    EXPECT_EQ(update("a", 0, 3), (Numbers{0, 2}));
    EXPECT_EQ(update("a", 0, 5), (Numbers{0, 2, 4}));
    EXPECT_EQ(update("a", 1, 5), (Numbers{2, 4}));
    EXPECT_EQ(update("b", 1, 5), (Numbers{1, 3}));
    EXPECT_EQ(update("", 5, 5), Numbers{});
}

TEST(PictureMeter, CountsOnlyWhileSomethingMoves) {
    unit::PictureMeter meter;
    double now = 100;
    meter.Count(now, true);
    for (int picture = 0; picture < 120; ++picture)
        meter.Count(now += 1.0 / 60, true);
    EXPECT_NEAR(meter.rate(), 60, 0.1);
    // Nothing moved for an hour, and the next picture after it has no gap.
    meter.Count(now += 1.0 / 60, false);
    meter.Count(now += 3600, true);
    meter.Count(now += 0.04, true);
    EXPECT_EQ(meter.Summary(), "122 pictures in 2.1 s (59.3 a second, longest gap 40 ms)");
}

TEST(Readable, TellsRequestsAndBroadcastsInWords) {
    EXPECT_EQ(unit::ReadablePowerName("_Maker_Tool_PowerOFF_Acknowledge_"),
              "power off acknowledged");
    EXPECT_EQ(unit::ReadablePowerName("Other"), "Other");
    EXPECT_EQ(unit::ReadableBroadcast({L"_Maker_All_APP_PowerStatusChange_", 0xC001, 0, 2}),
              "power status: external power off, battery flag 2");
    EXPECT_EQ(unit::ReadableBroadcast({L"", 1030, 7, 8}), "message 1030 (7, 8)");
    EXPECT_EQ(unit::ReadableTime(std::chrono::microseconds(20'132'900)), "20.133");
}

}  // namespace
}  // namespace tests
