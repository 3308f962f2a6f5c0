#include "unit/line/line_tap.h"

#include <gtest/gtest.h>

#include "tests/unit_line/tapped_line.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using enum unit::Direction;
using platform::kernel::After;

TEST(LineTap, NothingPassesWhileThePlugIsOut) {
    // The frame rule holds the first chunk, or the delay does.
    TappedLine line({"delay 1ms frames", "delay 1ms bytes to-dvr after 1 times 1"});
    line.Send(kToUnit, "0: A5 5A / 600: 01 / 800: 03");
    line.Send(kToDvr, "0: 0A 0B / 600: 02 / 800: 04");
    After(500us, [&] { line.tap->SetPlugged(false); });
    After(550us, [&] { line.tap->Inject(kToUnit, std::vector<std::uint8_t>{5}); });
    After(700us, [&] { line.tap->SetPlugged(true); });
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "800: 03");
    EXPECT_EQ(line.dvr.text(), "0: 0A / 800: 04");
    EXPECT_EQ(line.observed_to_dvr.text(), "0: 0A 0B / 600: 02 / 800: 04");
}

TEST(LineTap, LosesDelayedBytesWhenThePortCloses) {
    TappedLine line({"delay 100ms bytes"});
    line.Send(kToUnit, "0: 01 / 30000: 03");
    line.Send(kToDvr, "0: 02 / 30000: 04");
    line.RunFor(10ms);
    line.tap->Close();
    line.tap->Inject(kToUnit, std::vector<std::uint8_t>{5});
    line.RunFor(10ms);
    line.Open();
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "130000: 03");
    EXPECT_EQ(line.dvr.text(), "130000: 04");
}

TEST(LineTap, LosesBytesBeyondItsLimit) {
    TappedLine line({"delay 100ms bytes to-unit times 1"});
    line.Send(kToUnit, "0: 01 / 2000000: 02");
    line.RunFor(1ms);
    line.tap->Inject(kToUnit, std::vector<std::uint8_t>(300'000));
    line.RunFor(3s);
    constexpr std::string_view kFirst = "100000:";
    constexpr std::string_view kLast = " / 2000000: 02";
    EXPECT_EQ(line.program.text().size(), kFirst.size() + 262'144 * 3 + kLast.size());
    EXPECT_TRUE(line.program.text().ends_with(kLast));
}

TEST(LineTap, HeldBytesPassWithTheNextByteWhenTheRuleIsCleared) {
    TappedLine line({"drop frames"});
    line.Send(kToUnit, "0: A5 5A 80 / 2000: 00");
    After(1ms, [&] { line.faults->Clear(); });
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "2000: A5 5A 80 00");
}

TEST(LineTap, InjectedBytesQueueBehindDelayedOnes) {
    TappedLine line({"delay 1ms bytes times 1"});
    line.Send(kToUnit, "0: 01");
    After(500us, [&] {
        line.tap->Inject(kToUnit, std::vector<std::uint8_t>{0xCC});
        line.tap->Inject(kToDvr, std::vector<std::uint8_t>{0xDD});
    });
    line.RunFor(1s);
    EXPECT_EQ(line.program.text(), "1000: 01 CC");
    EXPECT_EQ(line.dvr.text(), "500: DD");
}

TEST(LineTap, PassesTheRestWhenAFullLineIsWritableAgain) {
    const std::vector<std::uint8_t> bytes{1, 2, 3};
    TappedLine line;
    int writable = 0;
    line.tap->OnWritable([&] { ++writable; });
    line.far->space = 2;
    EXPECT_EQ(line.tap->Transmit(bytes), 2U) << "without faults the port keeps the rest";
    line.Add("duplicate bytes to-dvr");
    line.far->space = 2;
    EXPECT_EQ(line.tap->Transmit(bytes), 3U);
    EXPECT_EQ(line.tap->Transmit(bytes), 0U);
    for (const int expected : {0, 1}) {
        line.far->space = 3;
        line.far->on_writable();
        EXPECT_EQ(writable, expected) << "still full at first";
    }
    EXPECT_EQ(line.dvr.text(), "0: 01 02 01 01 02 02 03 03");
    EXPECT_EQ(line.observed_to_dvr.text(), "0: 01 02 01 02 03");
}

// A real line does not stand still with the unit's clock: what it brings waits.
TEST(LineTap, PassesWhatComesWhileTheClockIsPausedWhenItRuns) {
    namespace kernel = platform::kernel;
    const Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = 1000});
    const auto far = std::make_shared<TestLine>();
    const auto tap = std::make_shared<unit::LineTap>(far, std::make_shared<unit::LineFaults>(),
                                                     unit::LineTap::Observer());
    std::string received;
    tap->Open([&](std::span<const std::uint8_t> bytes) { received += unit::HexText(bytes) + "/"; });
    EXPECT_TRUE(kernel::PauseClock());
    for (const std::uint8_t byte : std::vector<std::uint8_t>{1, 2}) {
        far->receiver({&byte, 1});
        kernel::RunHostThread([calls = 0]() mutable { return ++calls > 1; });
    }
    EXPECT_EQ(received, "");
    EXPECT_TRUE(kernel::ResumeClock());
    kernel::RunHostThread([&] { return !received.empty(); });
    const std::uint8_t last = 3;
    far->receiver({&last, 1});
    EXPECT_EQ(received, "01 02/03/");
    tap->Close();
}

}  // namespace
}  // namespace tests
