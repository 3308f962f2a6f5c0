#include "unit/line/line_tap.h"

#include <gtest/gtest.h>

#include "tests/unit_line/tapped_line.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using enum unit::Direction;

TEST(LineTap, NothingPassesWhileThePlugIsOut) {
    TappedLine line;
    line.Add("delay 1ms frames");
    line.Add("delay 1ms bytes to-dvr after 1 times 1");
    line.Send(kToUnit, 0us, "A5 5A");  // held back for the frame rule
    line.Send(kToDvr, 0us, "0A 0B");   // delayed
    platform::kernel::After(500us, [&] { line.tap->SetPlugged(false); });
    line.Send(kToUnit, 600us, "01");
    line.Send(kToDvr, 600us, "02");
    platform::kernel::After(700us, [&] { line.tap->SetPlugged(true); });
    line.Send(kToUnit, 800us, "03");
    line.Send(kToDvr, 800us, "04");
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "800: 03");
    EXPECT_EQ(line.dvr.text(), "0: 0A / 800: 04");
    EXPECT_EQ(line.heard_to_dvr.text(), "0: 0A 0B / 600: 02 / 800: 04");
}

TEST(LineTap, WhatIsOnItsWayIsLostWhenThePortCloses) {
    TappedLine line;
    line.Add("delay 100ms bytes");
    line.Send(kToUnit, 0us, "01");
    line.Send(kToDvr, 0us, "02");
    line.RunFor(10ms);
    line.tap->Close();
    line.tap->Inject(kToUnit, std::vector<std::uint8_t>{5});
    line.RunFor(10ms);
    line.Open();
    line.Send(kToUnit, 30ms, "03");
    line.Send(kToDvr, 30ms, "04");
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "130000: 03");
    EXPECT_EQ(line.dvr.text(), "130000: 04");
}

TEST(LineTap, KeepsNoMoreOnItsWayThanADevicesMemory) {
    TappedLine line;
    line.Add("delay 100ms bytes to-unit times 1");
    line.Send(kToUnit, 0us, "01");
    line.RunFor(1ms);
    line.tap->Inject(kToUnit, std::vector<std::uint8_t>(300'000));
    line.RunFor(1s);
    constexpr std::size_t kTextOfAByte = 3;
    EXPECT_EQ(line.program.text().size(), std::string("100000:").size() + 262'144 * kTextOfAByte);
    line.Send(kToUnit, 2s, "02");
    line.RunFor(2s);
    EXPECT_TRUE(line.program.text().ends_with(" / 2000000: 02"));
}

TEST(LineTap, HoldsBackOnlyForFrameRulesAndNeverForEver) {
    const std::pair<const char*, const char*> cases[] = {
        {"drop bytes after 100 times 1", "0: A5 5A 80 / 40000: 00 / 200000: 01 02"},
        {"drop frames to-dvr", "0: A5 5A 80 / 40000: 00 / 200000: 01 02"},
        // 50 ms after its last byte.
        {"drop frames", "90000: A5 5A 80 00 / 200000: 01 02"},
    };
    for (const auto& [rule, arrives] : cases) {
        SCOPED_TRACE(rule);
        TappedLine line;
        line.Add(rule);
        line.Send(kToUnit, 0us, "A5 5A 80");
        line.Send(kToUnit, 40ms, "00");
        line.Send(kToUnit, 200ms, "01 02");
        line.RunFor(1s);
        EXPECT_EQ(line.program.text(), arrives);
    }
    // The rule goes: what it held back comes with the next byte.
    TappedLine line;
    line.Add("drop frames");
    line.Send(kToUnit, 0us, "A5 5A 80");
    platform::kernel::After(1ms, [&] { line.faults->Clear(); });
    line.Send(kToUnit, 2ms, "00");
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "2000: A5 5A 80 00");
}

TEST(LineTap, InjectedBytesQueueBehindThoseThatWait) {
    TappedLine line;
    line.Add("delay 1ms bytes times 1");
    line.Send(kToUnit, 0us, "01");
    platform::kernel::After(500us, [&] {
        line.tap->Inject(kToUnit, std::vector<std::uint8_t>{0xCC});
        line.tap->Inject(kToDvr, std::vector<std::uint8_t>{0xDD});
    });
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "1000: 01 CC");
    EXPECT_EQ(line.dvr.text(), "500: DD");
}

TEST(LineTap, AFullLineTakesTheRestWhenItHasRoom) {
    const std::vector<std::uint8_t> bytes{1, 2, 3};
    TappedLine line;
    int rooms = 0;
    line.tap->OnRoom([&] { ++rooms; });
    line.far->room = 2;
    EXPECT_EQ(line.tap->Transmit(bytes), 2U) << "without faults the port keeps the rest";
    line.Add("duplicate bytes to-dvr");
    line.far->room = 2;
    EXPECT_EQ(line.tap->Transmit(bytes), 3U);
    EXPECT_EQ(line.tap->Transmit(bytes), 0U);
    line.far->room = 3;
    line.far->tell_room();
    EXPECT_EQ(rooms, 0) << "still full";
    line.far->room = 3;
    line.far->tell_room();
    EXPECT_EQ(rooms, 1);
    EXPECT_EQ(line.dvr.text(), "0: 01 02 01 01 02 02 03 03");
    EXPECT_EQ(line.heard_to_dvr.text(), "0: 01 02 01 02 03");
}

}  // namespace
}  // namespace tests
