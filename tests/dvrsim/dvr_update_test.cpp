#include <algorithm>

#include "bench.h"

namespace dvrsim {
namespace {

using State = Dvr::State;

constexpr const char* kOld = "14.06.12.V1.00.05";

struct UpdateBench : Bench {
    explicit UpdateBench(Options options = {}) : Bench(std::move(options)) {
        EXPECT_TRUE(WriteImage(card.path(), kNewVersion));
        BootToNormal();
        dvr.InsertCard(card.path());
        host.Run(milliseconds(2000));
        dvr.Reset();
        reset_at = host.Now();
        host.sent.clear();
    }
    std::vector<int> Percents() const {
        std::vector<int> percents;
        for (const Sent& report : Only(0x80, 0x002E)) {
            percents.push_back(report.payload[0]);
        }
        return percents;
    }
    std::string AskVersion() {
        const auto answers = Ask(0x802E);
        return answers.empty() ? ""
                               : std::string(answers[0].payload.begin(), answers[0].payload.end());
    }

    microseconds reset_at{};
};

TEST(DvrUpdate, TheWholeRoad) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        UpdateBench bench({.seed = seed});
        bench.host.Run(milliseconds(60000));
        const auto reports = bench.Only(0x80, 0x002E);
        ASSERT_EQ(reports.size(), 100U);
        for (std::size_t i = 0; i < reports.size(); ++i) {
            EXPECT_EQ(reports[i].payload[0], i + 1);
            EXPECT_EQ(std::string(reports[i].payload.begin() + 1, reports[i].payload.end()),
                      kNewVersion);
        }
        EXPECT_LT(reports[0].time - bench.reset_at, milliseconds(3500));
        EXPECT_GT(reports[99].time - reports[0].time, milliseconds(20000));
        EXPECT_LT(reports[99].time - reports[0].time, milliseconds(40000));
        // Neither INIT_OK nor NORMAL: the unit would take the update for finished.
        EXPECT_EQ(bench.Only(0x80, 0x0010).size(), 1U);
        // The card is reported once, when the unit knows of the update already.
        ASSERT_EQ(bench.Only(0x80, 0x0026).size(), 1U);
        EXPECT_GT(bench.Only(0x80, 0x0026)[0].time, reports[0].time);

        EXPECT_EQ(bench.dvr.GetState(), State::kUpdateFinished);
        EXPECT_EQ(bench.AskVersion(), kOld);
        bench.dvr.RemoveCard();
        bench.During(milliseconds(20000));
        ASSERT_EQ(bench.host.sent.size(), 1U);
        EXPECT_EQ(bench.host.sent[0].code, 0x0026);
        EXPECT_EQ(bench.host.sent[0].payload[0], 0);

        bench.dvr.Reset();
        bench.host.Run(milliseconds(4000));
        EXPECT_EQ(bench.dvr.GetState(), State::kNormal);
        EXPECT_EQ(bench.AskVersion(), kNewVersion);
    }
}

TEST(DvrUpdate, InterruptedItFailsAndTheOldVersionRuns) {
    // The image found but nothing reported yet, or in the middle.
    for (const int moment : {0, 12000}) {
        for (const bool pull_card : {true, false}) {
            SCOPED_TRACE(testing::Message() << "moment " << moment << " card " << pull_card);
            UpdateBench bench;
            while (bench.dvr.GetState() != State::kUpdating) {
                bench.host.Run(milliseconds(1));
            }
            bench.host.Run(milliseconds(moment));
            bench.host.sent.clear();
            pull_card ? void(bench.dvr.RemoveCard()) : bench.dvr.PowerOff();
            EXPECT_EQ(bench.dvr.GetState(), pull_card ? State::kUpdateFailed : State::kOff);
            bench.host.Run(milliseconds(60000));
            EXPECT_TRUE(bench.Percents().empty());
            EXPECT_EQ(bench.AskVersion(), pull_card ? kOld : "");
            bench.dvr.RemoveCard();
            bench.dvr.PowerOn();
            bench.dvr.Reset();
            bench.host.Run(milliseconds(4000));
            EXPECT_EQ(bench.dvr.GetState(), State::kNormal);
            EXPECT_EQ(bench.AskVersion(), kOld);
        }
    }
}

TEST(DvrUpdate, ABrokenCardBootsNormallyAndARebootOrderBeginsAnew) {
    UpdateBench broken;
    broken.dvr.ReportCard(CardStatus::kBroken);
    broken.host.Run(milliseconds(10000));
    EXPECT_EQ(broken.dvr.GetState(), State::kNormal);
    UpdateBench bench;
    bench.host.Run(milliseconds(10000));
    bench.dvr.Receive(Request(0x001C));
    bench.host.Run(milliseconds(100));
    const std::size_t before = bench.Percents().size();
    bench.host.Run(milliseconds(1500));
    EXPECT_EQ(bench.Percents().size(), before);
    bench.host.Run(milliseconds(60000));
    EXPECT_EQ(bench.Percents().size(), before + 100);
}

TEST(DvrFaults, EachLeavesOutItsPart) {
    const struct {
        Faults faults;
        bool states, card, version;
        std::size_t percents;
    } cases[] = {
        {{}, true, true, true, 100},
        {{.silent = true}, false, false, false, 0},
        {{.silent_card = true}, true, false, true, 100},
        {{.silent_version = true}, true, true, false, 100},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        UpdateBench bench({.faults = c.faults});
        bench.host.Run(milliseconds(60000));
        EXPECT_EQ(bench.dvr.GetState(), State::kUpdateFinished);
        EXPECT_EQ(bench.Percents().size(), c.percents);
        EXPECT_EQ(bench.Only(0x80, 0x0010).empty(), !c.states);
        EXPECT_EQ(bench.Only(0x80, 0x0026).empty(), !c.card);
        EXPECT_EQ(bench.Ask(0x8026).empty(), !c.card);
        EXPECT_EQ(bench.AskVersion().empty(), !c.version);
    }
}

// The percents, run after run, with the number of reports in 100 s, which chance varies when they
// go on for ever.
struct Goes {
    Faults faults;
    std::vector<std::pair<int, int>> runs;
    bool for_ever;
    State end;
    const char* runs_next;
};

TEST(DvrFaults, EachGoesWrongAtItsPercent) {
    const Goes cases[] = {
        {{.fail_at_percent = 37}, {{1, 37}}, false, State::kUpdateFailed, kOld},
        {{.fail_at_percent = 0}, {}, false, State::kUpdateFailed, kOld},
        {{.fail_at_percent = 100}, {{1, 100}}, false, State::kUpdateFailed, kOld},
        {{.stop_at_percent = 0}, {}, false, State::kUpdating, kOld},
        {{.stop_at_percent = 100}, {{1, 100}}, false, State::kUpdating, kOld},
        {{.stuck_at_percent = 2}, {{1, 2}, {2, 2}, {2, 2}}, true, State::kUpdating, kOld},
        {{.stuck_at_percent = 100}, {{1, 100}, {100, 100}}, true, State::kUpdating, kOld},
        {{.jump_back = PercentJump{60, 10}},
         {{1, 60}, {10, 100}},
         false,
         State::kUpdateFinished,
         kNewVersion},
        // Once an update: again in the next.
        {{.reboot_at_percent = 3, .jump_back = PercentJump{2, 1}},
         {{1, 2}, {1, 3}, {1, 2}, {1, 2}},
         true,
         State::kUpdating,
         kOld},
    };
    for (const Goes& c : cases) {
        SCOPED_TRACE(&c - cases);
        std::vector<int> expected;
        for (const auto& [from, to] : c.runs) {
            for (int percent = from; percent <= to; ++percent) {
                expected.push_back(percent);
            }
        }
        UpdateBench bench({.faults = c.faults});
        bench.host.Run(milliseconds(100000));
        std::vector<int> percents = bench.Percents();
        if (c.faults.reboot_at_percent) {
            EXPECT_EQ(std::ranges::count(bench.Only(0x80, 0x0010), Bytes{3}, &Sent::payload),
                      static_cast<std::ptrdiff_t>(percents.size() / 5));
        } else {
            EXPECT_EQ(bench.dvr.GetState(), c.end);
        }
        if (c.for_ever) {
            EXPECT_GE(percents.size(), 30U);
            percents.resize(expected.size());
        }
        EXPECT_EQ(percents, expected);
        bench.dvr.SetFaults({});
        bench.dvr.RemoveCard();
        bench.dvr.Reset();
        bench.host.Run(milliseconds(4000));
        EXPECT_EQ(bench.AskVersion(), c.runs_next);
    }
}

TEST(DvrFaults, WrongVersionsAreToldWhileTheRightOnesAreAtWork) {
    UpdateBench bench({.faults = {.version_answer = "", .image_version_report = "x"}});
    bench.host.Run(milliseconds(60000));
    EXPECT_EQ(bench.Only(0x80, 0x002E).at(41).payload, (Bytes{42, 'x'}));
    EXPECT_EQ(bench.Ask(0x802E).at(0).payload, Bytes{});
    bench.dvr.SetFaults({.version_answer = std::string(100, 'v')});
    EXPECT_EQ(bench.AskVersion(), std::string(64, 'v'));
    bench.dvr.SetFaults({});
    EXPECT_EQ(bench.AskVersion(), kOld);
    bench.dvr.Reset();
    EXPECT_EQ(bench.dvr.FirmwareVersion(), kNewVersion);
    bench.dvr.SetFirmwareVersion("V0");
    bench.dvr.Reset();
    bench.host.Run(milliseconds(3000));
    EXPECT_EQ(bench.AskVersion(), "V0");
}

TEST(DvrFaults, SlowStretchesBootAnswersAndCardButNotTheUpdate) {
    const auto boot = [](unsigned slowness) {
        Bench bench({.faults = {.slowness = slowness}});
        bench.dvr.PowerOn();
        bench.host.Run(milliseconds(4000) * slowness);
        return bench.host.sent;
    };
    std::vector<Sent> slowed = boot(1);
    ASSERT_EQ(slowed.size(), 4U);
    for (Sent& sent : slowed) {
        sent.time *= 7;
    }
    EXPECT_EQ(boot(7), slowed);
    Bench slow;
    slow.BootToNormal();
    slow.dvr.SetFaults({.slowness = 7});
    EXPECT_TRUE(slow.Ask(0x8010).empty());
    EXPECT_EQ(slow.During(milliseconds(84)).size(), 1U);
    UpdateBench bench({.faults = {.slowness = 2}});
    bench.host.Run(milliseconds(45000));
    EXPECT_EQ(bench.dvr.GetState(), State::kUpdateFinished);
}

TEST(DvrFaults, ReportsComeInCopiesAndTheCardsForEver) {
    Bench bench({.faults = {.indication_copies = 3}});
    bench.dvr.PowerOn();
    bench.host.Run(milliseconds(4000));
    EXPECT_EQ(bench.host.sent.size(), 12U);
    EXPECT_EQ(bench.Ask(0x8010).size(), 1U) << "an answer is no report";
    bench.dvr.SetFaults({.card_report_interval = milliseconds(100)});
    bench.dvr.InsertCard(bench.card.path());
    const auto reports = [&](int duration) {
        bench.During(milliseconds(duration));
        return bench.Only(0x80, 0x0026).size();
    };
    EXPECT_EQ(reports(1050), 11U);
    EXPECT_EQ(bench.host.sent.back().payload[0], 1);
    bench.dvr.Reset();
    EXPECT_EQ(reports(1500), 0U);
    EXPECT_GE(reports(3500), 20U);
    bench.dvr.SetFaults({});
    EXPECT_EQ(reports(2000), 0U);
}

}  // namespace
}  // namespace dvrsim
