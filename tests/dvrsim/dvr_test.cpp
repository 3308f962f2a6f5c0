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
}

TEST(DvrCard, ReportsComingAndGoingOnceAndAnyStatusOnDemand) {
    Bench bench;
    bench.BootToNormal();
    EXPECT_FALSE(bench.dvr.RemoveCard());
    EXPECT_TRUE(bench.dvr.InsertCard(bench.card.path()));
    EXPECT_FALSE(bench.dvr.InsertCard(bench.card.path()));
    EXPECT_EQ(bench.During(500ms, 0x80, 0x26).at(0).payload, (Bytes{1, 0, 42}));
    EXPECT_TRUE(bench.dvr.RemoveCard());
    EXPECT_EQ(bench.During(500ms, 0x80, 0x26).at(0).payload, (Bytes{0, 0, 0}));
    // In and out again before the contacts have settled.
    bench.dvr.InsertCard(bench.card.path());
    bench.host.Run(100ms);
    bench.dvr.RemoveCard();
    EXPECT_TRUE(bench.During(1s, 0x80, 0x26).empty());

    bench.dvr.InsertCard(bench.card.path());
    bench.host.Run(500ms);
    // A condition lasts; a false report of absence or presence neither makes nor ends one.
    for (const auto& [status, answer] :
         {std::pair(0, 1), {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {1, 6}}) {
        SCOPED_TRACE(status);
        bench.dvr.ReportCard(static_cast<CardStatus>(status));
        EXPECT_EQ(bench.host.sent.back().code, 0x0026U);
        EXPECT_EQ(bench.host.sent.back().payload[0], status);
        EXPECT_EQ(bench.Ask(0x8026).at(0).payload[0], answer);
    }
}

TEST(DvrRecording, OneReportASecondWhileACardIsIn) {
    Bench bench;
    bench.BootToNormal();
    EXPECT_TRUE(bench.During(3s, 0x80, 0x22).empty());
    bench.dvr.InsertCard(bench.card.path());
    const auto recorded = bench.During(65500ms, 0x80, 0x22);
    ASSERT_GE(recorded.size(), 62U);
    ASSERT_LE(recorded.size(), 68U);
    EXPECT_EQ(recorded[60].payload, (Bytes{'1', 0, '0', '0', '0', '1', '0', '1'}));
    struct Order {
        unsigned code;
        std::uint8_t payload;
        bool recording;
    };
    for (const Order& order :
         {Order{0x22, 0, false}, {0x22, '1', true}, {0x11, 2, false}, {0x11, 0, true}}) {
        bench.Ask(order.code, order.payload);
        EXPECT_EQ(bench.dvr.Recording(), order.recording);
        EXPECT_EQ(bench.Only(0x80, 0x11).size(), order.code == 0x11 ? 1U : 0U);
    }
    bench.dvr.RemoveCard();
    EXPECT_EQ(bench.During(5s, 0x80, 0x22).back().payload[0], '0');
    EXPECT_TRUE(bench.During(5s, 0x80, 0x22).empty());
}

}  // namespace
}  // namespace dvrsim
