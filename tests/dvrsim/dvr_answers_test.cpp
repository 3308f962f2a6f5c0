#include "bench.h"

namespace dvrsim {
namespace {

Bytes Text(const std::string& text) {
    return {text.begin(), text.end()};
}

TEST(DvrAnswers, EveryQueryAndOrderAfterADevicesLatency) {
    const std::map<unsigned, Bytes> read_by_the_unit{
        {0x8010, {2}},
        {0x8011, {0}},
        {0x801F, Text("20140901090005")},
        {0x8022, {'0', 0, '0', '0', '0', '0', '0', '0'}},
        {0x8026, {0, 0}},
        {0x802E, Text("14.06.12.V1.00.05")},
    };
    for (unsigned number = 0x0010; number <= 0x002E; ++number) {
        for (const unsigned code : {0x8000U | number, number}) {
            SCOPED_TRACE(testing::Message() << std::hex << code);
            Bench bench({.seed = code == 0x801F ? 0 : code});
            bench.BootToNormal();
            const auto asked = bench.host.Now();
            const auto answers = bench.Ask(static_cast<std::uint16_t>(code));
            ASSERT_EQ(answers.size(), 1U);
            EXPECT_GE(answers[0].payload.size(), 1U);
            EXPECT_GE(answers[0].time - asked, milliseconds(4));
            const auto known = read_by_the_unit.find(code);
            EXPECT_TRUE(known == read_by_the_unit.end() || known->second == answers[0].payload);
        }
    }
}

TEST(DvrAnswers, OneAfterTheOtherAndAFloodOnlyInPart) {
    Bench bench;
    bench.BootToNormal();
    for (int i = 0; i < 1000; ++i) {
        bench.dvr.Receive(Request(i % 2 == 0 ? 0x8010 : 0x8011));
    }
    const auto sent = bench.During(milliseconds(20000));
    EXPECT_GE(sent.size(), 16U);
    EXPECT_LT(sent.size(), 100U);
    for (std::size_t i = 0; i < sent.size(); ++i) {
        EXPECT_EQ(sent[i].code, i % 2 == 0 ? 0x8010 : 0x8011);
    }
    Bytes damaged = Request(0x8010);
    damaged.back() ^= 1;
    const Bytes acknowledgement{0xA5, 0x5A, 0x20, 0x80, 0x10, 0x00, 0x01, 0x02, 0x01, 0xB2};
    for (const Bytes& bytes : {Request(0x800F), Request(0x802F), acknowledgement, damaged}) {
        bench.dvr.Receive(bytes);
    }
    EXPECT_TRUE(bench.During(milliseconds(100)).empty());
    EXPECT_EQ(bench.dvr.DamagedFrames(), 1U);
    EXPECT_EQ(bench.Ask(0x8010).size(), 1U);
}

TEST(DvrCard, ReportsComingAndGoingOnceAndAnyStatusOnDemand) {
    Bench bench;
    bench.BootToNormal();
    const auto reports = [&](int duration) {
        bench.During(milliseconds(duration));
        std::vector<Bytes> payloads;
        for (const Sent& sent : bench.Only(0x80, 0x0026)) {
            payloads.push_back(sent.payload);
        }
        return payloads;
    };
    EXPECT_FALSE(bench.dvr.RemoveCard());
    EXPECT_TRUE(bench.dvr.InsertCard(bench.card.path()));
    EXPECT_FALSE(bench.dvr.InsertCard(bench.card.path()));
    EXPECT_EQ(reports(500), (std::vector<Bytes>{{1, 0, 42}}));
    EXPECT_TRUE(bench.dvr.RemoveCard());
    EXPECT_EQ(reports(500), (std::vector<Bytes>{{0, 0, 0}}));
    // In and out again before the contacts have settled.
    bench.dvr.InsertCard(bench.card.path());
    bench.host.Run(milliseconds(100));
    bench.dvr.RemoveCard();
    EXPECT_EQ(reports(1000), std::vector<Bytes>());

    bench.dvr.InsertCard(bench.card.path());
    bench.host.Run(milliseconds(500));
    for (int status = 0; status <= 6; ++status) {
        SCOPED_TRACE(status);
        bench.dvr.ReportCard(static_cast<CardStatus>(status));
        EXPECT_EQ(bench.host.sent.back().code, 0x0026);
        EXPECT_EQ(bench.host.sent.back().payload[0], status);
        // A condition lasts; a false report of absence does not.
        EXPECT_EQ(bench.Ask(0x8026).at(0).payload[0], status < 2 ? 1 : status);
    }
    bench.dvr.ReportCard(CardStatus::kPlugIn);
    EXPECT_EQ(bench.Ask(0x8026).at(0).payload[0], 6) << "what is told ends no condition";
}

TEST(DvrRecording, OneReportASecondWhileACardIsIn) {
    Bench bench;
    bench.BootToNormal();
    const auto ticks = [&](int duration) {
        bench.During(milliseconds(duration));
        return bench.Only(0x80, 0x0022);
    };
    EXPECT_TRUE(ticks(3000).empty());
    bench.dvr.InsertCard(bench.card.path());
    const auto recorded = ticks(65500);
    ASSERT_GE(recorded.size(), 62U);
    ASSERT_LE(recorded.size(), 68U);
    EXPECT_EQ(recorded[60].payload, (Bytes{'1', 0, '0', '0', '0', '1', '0', '1'}));
    for (const auto& [code, payload, recording] : {std::tuple(0x0022, 0, false),
                                                   {0x0022, '1', true},
                                                   {0x0011, 2, false},
                                                   {0x0011, 0, true}}) {
        bench.dvr.Receive(
            Request(static_cast<std::uint16_t>(code), static_cast<std::uint8_t>(payload)));
        bench.During(milliseconds(15));
        EXPECT_EQ(bench.dvr.Recording(), recording);
        EXPECT_EQ(bench.Only(0x80, 0x0011).size(), code == 0x0011 ? 1U : 0U);
    }
    bench.dvr.RemoveCard();
    EXPECT_EQ(ticks(5000).back().payload[0], '0');
    EXPECT_TRUE(ticks(5000).empty());
}

}  // namespace
}  // namespace dvrsim
