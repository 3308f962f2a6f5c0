#include <gtest/gtest.h>

#include <tuple>
#include <utility>

#include "tests/support/platform_fixture.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/history.h"
#include "unit/workbench/layout.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/redraw.h"

// The parts of the window that need no window.

namespace tests {
namespace {

using unit::Area;
using unit::LineBytes;
using unit::Scaling;
using enum unit::Direction;

TEST(History, SortsEventsForThePanel) {
    Platform platform;
    unit::EventHub hub;
    unit::History history(hub);
    EXPECT_FALSE(history.Update());
    hub.Publish(unit::LineLogged{"first"});
    // A report of 57 percent in two chunks, and one with a wrong checksum.
    hub.Publish(LineBytes{kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00}});
    hub.Publish(LineBytes{kToUnit, {0x01, 0x39, 0x01, 0xE7}});
    hub.Publish(LineBytes{kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00, 0x01, 0x3A, 0x00, 0x00}});
    hub.Publish(unit::CardMoved{true, "/somewhere"});
    hub.Publish(unit::PowerRequested{L"_All_APP_PowerSuspend_Request_"});
    hub.Publish(unit::BroadcastPosted{L"_PowerSuspend_Acknowledge_", 0xC000, 0, 0});
    EXPECT_TRUE(history.log().entries().empty()) << "only Update changes what the panel shows";
    EXPECT_TRUE(history.Update());
    EXPECT_EQ(history.log().entries().at(0).text, "first");
    EXPECT_TRUE(history.traffic().entries().at(0).checksum_good());
    EXPECT_FALSE(history.traffic().entries().at(1).checksum_good());
    ASSERT_EQ(history.percents().count(), 1U);
    EXPECT_EQ(history.percents().entries()[0].percent, 57);
    EXPECT_EQ(history.card_folder(), "/somewhere");
    EXPECT_EQ(history.power_messages().entries().at(0).text, "suspend request");
    EXPECT_EQ(history.power_messages().entries().at(1).text, "suspend acknowledged");
    // Between two calls of Update it keeps 50,000 events.
    for (int i = 0; i < 60'000; ++i)
        hub.Publish(unit::LineLogged{"more"});
    history.Update();
    EXPECT_EQ(history.log().count(), 50'001U);
}

TEST(History, KeepsTheLatestEntriesAndCountsAll) {
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

TEST(UpdatePlot, BeginsWithTheLatestUpdate) {
    const std::pair<std::vector<int>, std::size_t> cases[] = {
        {{40}, 0},
        {{0, 1, 50, 100, 0, 1, 20}, 4},
        {{1, 9, 1, 9, 1, 1}, 4},
        // A DVR that jumps back is still in the same update.
        {{0, 50, 2, 30}, 0},
    };
    for (const auto& [percents, first] : cases) {
        std::deque<unit::History::Percent> reports;
        for (const int percent : percents)
            reports.push_back({{}, percent});
        EXPECT_EQ(unit::LatestUpdate(reports), first) << testing::PrintToString(percents);
    }
}

TEST(Layout, ScalesTheScreenByWholeOrSmoothFactors) {
    const std::tuple<Area, Scaling, Area> cases[] = {
        {{0, 0, 800, 480}, Scaling::kWhole, {0, 0, 800, 480}},
        {{10, 20, 900, 600}, Scaling::kWhole, {60, 80, 800, 480}},
        {{10, 20, 1000, 600}, Scaling::kSmooth, {10, 20, 1000, 600}},
        {{0, 0, 1599, 2000}, Scaling::kWhole, {399, 760, 800, 480}},
        {{0, 0, 1600, 2000}, Scaling::kWhole, {0, 520, 1600, 960}},
        {{0, 0, 1920, 1080}, Scaling::kSmooth, {60, 0, 1800, 1080}},
        // Less space than the screen needs: smooth either way.
        {{0, 0, 400, 480}, Scaling::kWhole, {0, 120, 400, 240}},
        {{0, 0, 0, 0}, Scaling::kSmooth, {0, 0, 0, 0}},
    };
    for (const auto& [space, scaling, expected] : cases)
        EXPECT_EQ(unit::PlaceScreen(space, scaling), expected)
            << space.width << 'x' << space.height;
}

TEST(Layout, FillsTheWindowWithoutOverlap) {
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

TEST(Readable, FilterWantsAllWordsAndNoneWithAMinus) {
    for (const char* const matches :
         {"", "  ", "reset", "RESET", "dvr reset", "-suspend dvr", "-", "Reset_DVR()"})
        EXPECT_TRUE(unit::Matches("CMainFrame::Reset_DVR()", matches)) << matches;
    for (const char* const fails : {"dvr suspend", "-reset", "reset -dvr"})
        EXPECT_FALSE(unit::Matches("CMainFrame::Reset_DVR()", fails)) << fails;
}

TEST(Readable, NamesRequestsAndBroadcastsInWords) {
    EXPECT_EQ(unit::ReadablePowerName("_Maker_Tool_PowerOFF_Acknowledge_"),
              "power off acknowledged");
    EXPECT_EQ(unit::ReadablePowerName("Other"), "Other");
    EXPECT_EQ(unit::ReadableBroadcast({L"_Maker_All_APP_PowerStatusChange_", 0xC001, 0, 2}),
              "power status: external power off, battery flag 2");
    EXPECT_EQ(unit::ReadableBroadcast({L"", 1030, 7, 8}), "message 1030 (7, 8)");
    EXPECT_EQ(unit::ReadableTime(std::chrono::microseconds(20'132'900)), "20.133");
}

TEST(FilteredList, KeepsUpWithAListThatGrowsAndDrops) {
    const std::vector<std::string> all = {"a1", "b2", "a3", "b4", "a5"};
    unit::FilteredList list;
    const auto update = [&](const char* filter, std::uint64_t dropped, std::uint64_t count) {
        list.Update(filter, dropped, count,
                    [&](std::size_t index) { return unit::Matches(all[index + dropped], filter); });
        return list.numbers();
    };
    using Numbers = std::vector<std::uint64_t>;
    EXPECT_EQ(update("a", 0, 3), (Numbers{0, 2}));
    EXPECT_EQ(update("a", 0, 5), (Numbers{0, 2, 4}));
    EXPECT_EQ(update("a", 1, 5), (Numbers{2, 4}));
    EXPECT_EQ(update("b", 1, 5), (Numbers{1, 3}));
    EXPECT_EQ(update("", 5, 5), Numbers{});
}

TEST(RedrawSchedule, DrawsOnlyWhatChanged) {
    unit::RedrawSchedule redraw;
    bool news = false;
    const auto next = [&](double now, bool panel_visible = true, bool screen_outdated = false) {
        const auto [picture, panel] = redraw.Next(now, panel_visible, screen_outdated,
                                                  [&] { return std::exchange(news, false); });
        return std::string(panel ? "panel " : "") + (picture ? "picture" : "");
    };
    EXPECT_EQ(next(1), "panel picture") << "the first one";
    EXPECT_EQ(next(1.1), "");
    EXPECT_EQ(next(1.11, true, true), "picture");
    EXPECT_EQ(next(1.12, true, true), "picture");
    EXPECT_EQ(next(1.125, true, true), "") << "at most 60 per second";
    news = true;
    EXPECT_EQ(next(1.13), "") << "at most 20 looks for news per second";
    EXPECT_EQ(next(1.16), "panel picture");
    EXPECT_EQ(next(1.4), "");
    EXPECT_EQ(next(1.46), "panel picture") << "state without events";
    redraw.Repaint();
    EXPECT_EQ(next(1.5), "panel picture");
    redraw.LetPanelSettle();
    for (const double now : {1.52, 1.54, 1.56})
        EXPECT_EQ(next(now), "panel picture") << now;
    EXPECT_EQ(next(1.58), "");
    EXPECT_EQ(redraw.Idle(1.58, false), 0.1);
    EXPECT_EQ(redraw.Idle(1.58, true), 0);
    // The key that hides the panel is the last event that the panel took.
    redraw.LetPanelSettle();
    redraw.Repaint();
    EXPECT_EQ(next(1.6, false), "picture");
    EXPECT_EQ(next(2, false), "");
    EXPECT_EQ(redraw.Idle(2, false), 0.1) << "a hidden panel keeps the loop busy";
}

TEST(PictureMeter, CountsOnlyWhileSomethingMoves) {
    unit::PictureMeter meter;
    double now = 100;
    meter.Count(now, true);
    for (int picture = 0; picture < 120; ++picture)
        meter.Count(now += 1.0 / 60, true);
    EXPECT_NEAR(meter.rate(), 60, 0.1);
    // Nothing moves for an hour, which is no gap.
    meter.Count(now += 1.0 / 60, false);
    meter.Count(now += 3600, true);
    meter.Count(now += 0.04, true);
    EXPECT_EQ(meter.Summary(), "122 pictures in 2.1 s (59.3 per second, longest gap 40 ms)");
}

}  // namespace
}  // namespace tests
