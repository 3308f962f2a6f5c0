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
        EXPECT_FALSE(bench.dvr.HasPicture());
        const auto sent = bench.During(4s);
        EXPECT_TRUE(bench.dvr.HasPicture());
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

TEST(DvrAnswers, EveryQueryAndOrderAfterADevicesLatency) {
    const std::map<unsigned, std::string> read_by_the_unit{
        {0x8010, "\2"},
        {0x8011, std::string(1, 0)},
        {0x801F, "20140901090005"},
        {0x8022, std::string("0\000000000", 8)},
        {0x8026, std::string(2, 0)},
        {0x802E, "14.06.12.V1.00.05"},
    };
    for (unsigned number = 0x0010; number <= 0x002E; ++number)
        for (const unsigned code : {0x8000U | number, number}) {
            SCOPED_TRACE(testing::Message() << std::hex << code);
            Bench bench({.seed = code == 0x801F ? 0 : code});
            bench.BootToNormal();
            const auto asked = bench.host.Now();
            const auto answers = bench.Ask(code);
            ASSERT_EQ(answers.size(), 1U);
            EXPECT_GE(answers[0].payload.size(), 1U);
            EXPECT_GE(answers[0].time - asked, 4ms);
            const auto known = read_by_the_unit.find(code);
            EXPECT_TRUE(known == read_by_the_unit.end() || known->second == answers[0].Text());
        }
}

TEST(DvrAnswers, OneAfterTheOtherAndAFloodOnlyInPart) {
    Bench bench;
    bench.BootToNormal();
    for (int i = 0; i < 1000; ++i)
        bench.dvr.Receive(Request(0x8010 + i % 2));
    const auto sent = bench.During(20s);
    EXPECT_GE(sent.size(), 16U);
    EXPECT_LT(sent.size(), 100U);
    for (std::size_t i = 0; i < sent.size(); ++i)
        EXPECT_EQ(sent[i].code, 0x8010 + i % 2);
    Bytes damaged = Request(0x8010);
    damaged.back() ^= 1;
    const Bytes acknowledgement{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x01, 0xB2};
    for (const Bytes& bytes : {Request(0x800F), Request(0x802F), acknowledgement, damaged})
        bench.dvr.Receive(bytes);
    EXPECT_TRUE(bench.During(100ms).empty());
    EXPECT_EQ(bench.dvr.DamagedFrames(), 1U);
    EXPECT_EQ(bench.Ask(0x8010).size(), 1U);
    // The beginning of a long request goes with a reset.
    bench.dvr.Receive(Bytes{0xA5, 0x5A, 0x10, 0x80, 0x10, 0x00, 0x40});
    bench.dvr.Reset();
    bench.host.Run(5s);
    EXPECT_EQ(bench.Ask(0x8010).size(), 1U);
}

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
    UpdateBench bench({.faults = {.reported_version = "", .reported_image_version = "x"}});
    bench.host.Run(60s);
    EXPECT_EQ(bench.Only(0x80, 0x2E).at(41).payload, (Bytes{42, 'x'}));
    EXPECT_EQ(bench.Ask(0x802E).at(0).payload, Bytes{});
    bench.dvr.SetFaults({.reported_version = std::string(100, 'v')});
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
    for (const unsigned slow_factor : {1U, 7U}) {
        Bench bench({.faults = {.slow_factor = slow_factor}});
        bench.dvr.PowerOn();
        boots[slow_factor / 7] = bench.During(4s * slow_factor);
        bench.dvr.SetFaults({.slow_factor = 7});
        EXPECT_TRUE(bench.Ask(0x8010).empty());
        EXPECT_EQ(bench.During(84ms).size(), 1U);
    }
    ASSERT_EQ(boots[0].size(), 4U);
    for (Sent& sent : boots[0])
        sent.time *= 7;
    EXPECT_EQ(boots[1], boots[0]);
    UpdateBench bench({.faults = {.slow_factor = 2}});
    bench.host.Run(45s);
    EXPECT_EQ(bench.dvr.GetState(), kUpdateFinished);
}

}  // namespace
}  // namespace dvrsim
