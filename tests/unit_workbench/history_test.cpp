#include "unit/workbench/history.h"

#include <gtest/gtest.h>

#include "tests/support/platform_fixture.h"

namespace tests {
namespace {

using unit::Direction;
using unit::LineBytes;

TEST(History, FilesWhatHappensAtTheEdges) {
    Platform platform;
    unit::EventHub hub;
    unit::History history(hub);
    EXPECT_FALSE(history.Update());
    hub.Tell(unit::LineLogged{"first"});
    // A report of 57 percent in two pieces, and one whose checksum is wrong.
    hub.Tell(LineBytes{Direction::kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00}});
    hub.Tell(LineBytes{Direction::kToUnit, {0x01, 0x39, 0x01, 0xE7}});
    hub.Tell(LineBytes{Direction::kToUnit,
                       {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00, 0x01, 0x3A, 0x00, 0x00}});
    hub.Tell(unit::CardMoved{true, "/somewhere"});
    hub.Tell(unit::PowerRequested{L"_All_APP_PowerSuspend_Request_"});
    hub.Tell(unit::BroadcastPosted{L"_PowerSuspend_Acknowledge_", 0xC000, 0, 0});
    EXPECT_TRUE(history.log().entries().empty()) << "notes are filed by Update alone";
    EXPECT_TRUE(history.Update());
    ASSERT_EQ(history.log().entries().size(), 1U);
    EXPECT_EQ(history.log().entries()[0].text, "first");
    ASSERT_EQ(history.traffic().entries().size(), 2U);
    EXPECT_TRUE(history.traffic().entries()[0].checksum_good());
    EXPECT_FALSE(history.traffic().entries()[1].checksum_good());
    ASSERT_EQ(history.percents().entries().size(), 1U);
    EXPECT_EQ(history.percents().entries()[0].percent, 57);
    EXPECT_EQ(history.card_folder(), "/somewhere");
    ASSERT_EQ(history.words().entries().size(), 2U);
    EXPECT_EQ(history.words().entries()[0].text, "suspend request");
    EXPECT_EQ(history.words().entries()[1].text, "suspend acknowledged");
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

}  // namespace
}  // namespace tests
