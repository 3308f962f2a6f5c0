#include <set>

#include "tests/dvrsim/bench.h"

namespace dvrsim {
namespace {

TEST(DvrBoot, ReportsItsStatesAndCardInOrderAndInTime) {
    std::set<microseconds> starts;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        Bench bench({.seed = seed});
        bench.dvr.PowerOn();
        const auto sent = bench.During(4s);
        ASSERT_EQ(sent.size(), 4U);
        const Bytes payloads[] = {{0}, {0, 0, 0}, {1}, {2}};
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(sent[i], (Sent{sent[i].time, 0x80, i == 1 ? 0x26U : 0x10U, payloads[i]}));
        EXPECT_GE(sent[0].time, 1500ms);
        // The unit hides its buttons 2.1 s after a reset, after a card report up to 0.1 s later.
        EXPECT_GT(sent[1].time, 2200ms);
        EXPECT_GT(sent[3].time, sent[1].time + 300ms);
        EXPECT_LT(sent[3].time, 3800ms);
        starts.insert(sent[0].time);
    }
    EXPECT_GT(starts.size(), 150U) << "chance comes from the seed";
}

TEST(DvrBoot, HearsNothingBeforeItsProcessorIsUpAndAResetDropsWhatWasUnderWay) {
    Bench bench;
    const Bytes request = Request(0x802E);
    bench.dvr.Receive(request);
    bench.dvr.PowerOn();
    // The first half is lost, so the second is no frame either.
    bench.dvr.Receive(std::span(request).first(5));
    bench.host.Run(2s);
    bench.dvr.Receive(std::span(request).subspan(5));
    EXPECT_EQ(bench.Ask(0x802E).size(), 1U);
    EXPECT_TRUE(bench.Ask(0x8026).empty()) << "the card subsystem is not up yet";
    bench.BootToNormal();
    bench.dvr.Receive(request);
    bench.dvr.Receive(std::span(request).first(5));
    bench.dvr.Reset();
    EXPECT_FALSE(bench.dvr.HasPicture());
    EXPECT_TRUE(bench.During(1500ms).empty());
    bench.host.Run(2500ms);
    EXPECT_TRUE(bench.dvr.HasPicture());
    EXPECT_EQ(bench.Ask(0x802E).size(), 1U);
}

TEST(DvrBoot, WithoutPowerNothingHappens) {
    Bench bench;
    bench.dvr.Reset();
    bench.dvr.RebootItself();
    EXPECT_TRUE(bench.host.Idle());
    bench.BootToNormal();
    bench.dvr.Receive(Request(0x8010));
    bench.dvr.PowerOff();
    EXPECT_EQ(bench.dvr.GetState(), Dvr::State::kOff);
    EXPECT_TRUE(bench.host.Idle());
    EXPECT_TRUE(bench.Ask(0x8010).empty());
    bench.dvr.ReportCard(CardStatus::kBroken);
    bench.dvr.InsertCard(bench.card.path());
    EXPECT_TRUE(bench.During(5s).empty());
}

TEST(DvrBoot, AnOrderedRebootAndOneOfItsOwnAreReportedAndDone) {
    for (const bool ordered : {true, false}) {
        Bench bench;
        bench.BootToNormal();
        bench.host.sent.clear();
        ordered ? bench.dvr.Receive(Request(0x1C)) : bench.dvr.RebootItself();
        bench.host.Run(6s);
        EXPECT_EQ(bench.Only(0x20, 0x1C).size(), ordered ? 1U : 0U);
        const auto states = bench.Only(0x80, 0x10);
        ASSERT_EQ(states.size(), 4U);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(states[i].payload[0], (i + 3) % 4);
        EXPECT_GT(states[1].time, states[0].time + 1500ms);
        bench.dvr.PowerOff();
    }
}

}  // namespace
}  // namespace dvrsim
