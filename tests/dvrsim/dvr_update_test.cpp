#include "tests/dvrsim/bench.h"

namespace dvrsim {
namespace {

using enum Dvr::State;

constexpr const char* kOld = "14.06.12.V1.00.05";

struct UpdateBench : Bench {
    explicit UpdateBench(Options options = {}) : Bench(std::move(options)) {
        EXPECT_TRUE(WriteImage(card.path(), kNewVersion));
        BootToNormal();
        dvr.InsertCard(card.path());
        host.Run(2s);
        dvr.Reset();
        reset_at = host.Now();
        host.sent.clear();
    }
    void ResetToNormal() {
        dvr.Reset();
        host.Run(4s);
        EXPECT_EQ(dvr.GetState(), kNormal);
    }

    microseconds reset_at{};
};

TEST(DvrUpdate, TheWholeRoad) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        UpdateBench bench({.seed = seed});
        bench.host.Run(60s);
        const auto reports = bench.Only(0x80, 0x2E);
        ASSERT_EQ(reports.size(), 100U);
        for (std::size_t i = 0; i < reports.size(); ++i) {
            EXPECT_EQ(reports[i].payload[0], i + 1);
            EXPECT_EQ(reports[i].Text(1), kNewVersion);
        }
        EXPECT_LT(reports[0].time - bench.reset_at, 3500ms);
        EXPECT_GT(reports[99].time - reports[0].time, 20s);
        EXPECT_LT(reports[99].time - reports[0].time, 40s);
        // Neither INIT_OK nor NORMAL: the unit would take the update for finished.
        EXPECT_EQ(bench.Only(0x80, 0x10).size(), 1U);
        // The card is reported once, when the unit knows of the update already.
        ASSERT_EQ(bench.Only(0x80, 0x26).size(), 1U);
        EXPECT_GT(bench.Only(0x80, 0x26)[0].time, reports[0].time);

        EXPECT_EQ(bench.dvr.GetState(), kUpdateFinished);
        EXPECT_EQ(bench.AskVersion(), kOld);
        bench.dvr.RemoveCard();
        const auto after = bench.During(20s);
        ASSERT_EQ(after.size(), 1U);
        EXPECT_EQ(after[0], (Sent{after[0].time, 0x80, 0x26, {0, 0, 0}}));
        bench.ResetToNormal();
        EXPECT_EQ(bench.AskVersion(), kNewVersion);
    }
}

TEST(DvrUpdate, InterruptedItFailsAndTheOldVersionRuns) {
    // The image found but nothing reported yet, or in the middle.
    for (const microseconds moment : {0s, 12s})
        for (const bool pull_card : {true, false}) {
            SCOPED_TRACE(testing::Message() << moment.count() << " card " << pull_card);
            UpdateBench bench;
            while (bench.dvr.GetState() != kUpdating)
                bench.host.Run(1ms);
            bench.host.Run(moment);
            pull_card ? void(bench.dvr.RemoveCard()) : bench.dvr.PowerOff();
            EXPECT_EQ(bench.dvr.GetState(), pull_card ? kUpdateFailed : kOff);
            EXPECT_TRUE(bench.During(60s, 0x80, 0x2E).empty());
            EXPECT_EQ(bench.AskVersion(), pull_card ? kOld : "");
            bench.dvr.RemoveCard();
            bench.dvr.PowerOn();
            bench.ResetToNormal();
            EXPECT_EQ(bench.AskVersion(), kOld);
        }
}

TEST(DvrFaults, WrongVersionsAreToldWhileTheRightOnesAreAtWork) {
    UpdateBench bench({.faults = {.version_answer = "", .image_version_report = "x"}});
    bench.host.Run(60s);
    EXPECT_EQ(bench.Only(0x80, 0x2E).at(41).payload, (Bytes{42, 'x'}));
    EXPECT_EQ(bench.Ask(0x802E).at(0).payload, Bytes{});
    bench.dvr.SetFaults({.version_answer = std::string(100, 'v')});
    EXPECT_EQ(bench.AskVersion(), std::string(64, 'v'));
    bench.dvr.SetFaults({});
    EXPECT_EQ(bench.AskVersion(), kOld);
    bench.dvr.Reset();
    EXPECT_EQ(bench.dvr.FirmwareVersion(), kNewVersion);
    bench.dvr.SetFirmwareVersion("V0");
    bench.dvr.Reset();
    bench.host.Run(3s);
    EXPECT_EQ(bench.AskVersion(), "V0");
}

TEST(DvrFaults, SlowStretchesBootAnswersAndCardButNotTheUpdate) {
    std::vector<Sent> boots[2];
    for (const unsigned slowness : {1U, 7U}) {
        Bench bench({.faults = {.slowness = slowness}});
        bench.dvr.PowerOn();
        boots[slowness / 7] = bench.During(4s * slowness);
        bench.dvr.SetFaults({.slowness = 7});
        EXPECT_TRUE(bench.Ask(0x8010).empty());
        EXPECT_EQ(bench.During(84ms).size(), 1U);
    }
    ASSERT_EQ(boots[0].size(), 4U);
    for (Sent& sent : boots[0])
        sent.time *= 7;
    EXPECT_EQ(boots[1], boots[0]);
    UpdateBench bench({.faults = {.slowness = 2}});
    bench.host.Run(45s);
    EXPECT_EQ(bench.dvr.GetState(), kUpdateFinished);
}

}  // namespace
}  // namespace dvrsim
