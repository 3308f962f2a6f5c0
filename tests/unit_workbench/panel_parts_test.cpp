#include <gtest/gtest.h>

#include "unit/workbench/dock.h"
#include "unit/workbench/picture_meter.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/text_filter.h"

namespace tests {
namespace {

TEST(TextFilter, WantsAllWordsAndNoneBehindAMinus) {
    const std::pair<const char*, bool> cases[] = {
        {"", true},          {"  ", true},           {"reset", true},       {"RESET", true},
        {"dvr reset", true}, {"dvr suspend", false}, {"-reset", false},     {"-suspend dvr", true},
        {"-", true},         {"Reset_DVR()", true},  {"reset -dvr", false},
    };
    for (const auto& [filter, passes] : cases)
        EXPECT_EQ(unit::Passes("CMainFrame::Reset_DVR()", filter), passes) << filter;
}

TEST(FilteredList, FollowsTheListAsItGrowsAndDrops) {
    const std::vector<std::string> all = {"a1", "b2", "a3", "b4", "a5"};
    unit::FilteredList list;
    const auto update = [&](const std::string& filter, std::uint64_t dropped, std::uint64_t count) {
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
    EXPECT_EQ(unit::ReadablePowerName("_Maker_All_APP_PowerSuspend_Request_"), "suspend request");
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
