#include <set>

#include "bench.h"

namespace dvrsim {
namespace {

using State = Dvr::State;

// The unit hides its buttons 2.1 s after a reset, after a card report up to 0.1 s later still.
constexpr milliseconds kButtonsHidden{2100};

TEST(DvrBoot, ReportsItsStatesAndCardInOrderAndInTime) {
    std::set<microseconds> starts;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        Bench bench({.seed = seed});
        bench.dvr.PowerOn();
        const auto sent = bench.During(milliseconds(4000));
        ASSERT_EQ(sent.size(), 4U);
        const Bytes payloads[] = {{0}, {0, 0, 0}, {1}, {2}};
        for (std::size_t i = 0; i < 4; ++i) {
            const std::uint16_t code = i == 1 ? 0x0026 : 0x0010;
            EXPECT_EQ(sent[i], (Sent{sent[i].time, 0x80, code, payloads[i]}));
        }
        EXPECT_GE(sent[0].time, milliseconds(1500));
        EXPECT_GT(sent[1].time, kButtonsHidden + milliseconds(100));
        EXPECT_GT(sent[3].time, sent[1].time + milliseconds(300));
        EXPECT_LT(sent[3].time, milliseconds(3800));
        starts.insert(sent[0].time);
    }
    EXPECT_GT(starts.size(), 150U) << "chance comes from the seed";
}

TEST(DvrBoot, HearsNothingBeforeItsProcessorIsUp) {
    Bench bench;
    const Bytes request = Request(0x802E);
    bench.dvr.Receive(request);
    bench.dvr.PowerOn();
    // The first half is lost, so the second is no frame either.
    bench.dvr.Receive(std::span(request).first(5));
    bench.host.Run(milliseconds(2000));
    bench.dvr.Receive(std::span(request).subspan(5));
    EXPECT_EQ(bench.Ask(0x802E).size(), 1U);
    EXPECT_TRUE(bench.Ask(0x8026).empty()) << "the card subsystem is not up yet";
}

TEST(DvrBoot, ResetDropsWhatWasUnderWay) {
    Bench bench;
    bench.BootToNormal();
    bench.dvr.Receive(Request(0x802E));
    bench.dvr.Receive(Bytes{0xA5, 0x5A, 0x10, 0x80, 0x2E});
    bench.dvr.Reset();
    EXPECT_FALSE(bench.dvr.HasPicture());
    EXPECT_TRUE(bench.During(milliseconds(1500)).empty());
    bench.host.Run(milliseconds(2500));
    EXPECT_TRUE(bench.dvr.HasPicture());
    EXPECT_EQ(bench.Ask(0x802E).size(), 1U);
}

TEST(DvrBoot, WithoutPowerNothingHappens) {
    Bench bench;
    bench.dvr.Reset();
    EXPECT_TRUE(bench.host.Idle());
    bench.BootToNormal();
    bench.dvr.Receive(Request(0x8010));
    bench.dvr.PowerOff();
    EXPECT_EQ(bench.dvr.GetState(), State::kOff);
    EXPECT_TRUE(bench.host.Idle());
    EXPECT_TRUE(bench.Ask(0x8010).empty());
    bench.dvr.ReportCard(CardStatus::kBroken);
    bench.dvr.InsertCard(bench.card.path());
    EXPECT_TRUE(bench.During(milliseconds(5000)).empty());
}

TEST(DvrBoot, AnOrderedRebootAndOneOfItsOwnAreReportedAndDone) {
    Bench bench;
    bench.dvr.RebootItself();
    EXPECT_TRUE(bench.host.Idle()) << "off";
    for (const bool ordered : {true, false}) {
        bench.BootToNormal();
        bench.host.sent.clear();
        ordered ? bench.dvr.Receive(Request(0x001C)) : bench.dvr.RebootItself();
        bench.host.Run(milliseconds(6000));
        EXPECT_EQ(bench.Only(0x20, 0x001C).size(), ordered ? 1U : 0U);
        const auto states = bench.Only(0x80, 0x0010);
        ASSERT_EQ(states.size(), 4U);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(states[i].payload[0], (i + 3) % 4);
        }
        EXPECT_GT(states[1].time, states[0].time + milliseconds(1500));
    }
}

}  // namespace
}  // namespace dvrsim
