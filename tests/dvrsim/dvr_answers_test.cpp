#include <gtest/gtest.h>

#include "bench.h"

namespace dvrsim {
namespace {

Bytes Text(const std::string& text) {
    return {text.begin(), text.end()};
}

TEST(DvrAnswers, EveryQueryAndOrderAfterADevicesLatency) {
    for (unsigned code = 0x0010; code <= 0x002E; ++code) {
        for (const unsigned query : {0x8000U, 0U}) {
            SCOPED_TRACE(testing::Message() << std::hex << (code | query));
            Bench bench({.seed = code});
            bench.BootToNormal();
            const auto asked = bench.host.Now();
            bench.dvr.Receive(Request(static_cast<std::uint16_t>(code | query)));
            const auto sent = bench.During(milliseconds(15));
            ASSERT_GE(sent.size(), 1U);
            EXPECT_EQ(sent[0].type, 0x20);
            EXPECT_EQ(sent[0].code, code | query);
            EXPECT_GE(sent[0].payload.size(), 1U);
            EXPECT_GE(sent[0].time - asked, milliseconds(4));
            EXPECT_TRUE(bench.host.WellFormed());
        }
    }
}

TEST(DvrAnswers, PayloadsThatTheUnitReads) {
    const struct {
        std::uint16_t code;
        Bytes payload;
    } cases[] = {
        {0x8010, {2}},
        {0x8011, {0}},
        {0x801F, Text("20140901090005")},
        {0x8022, {'0', 0, '0', '0', '0', '0', '0', '0'}},
        {0x8026, {0, 0}},
        {0x802E, Text("14.06.12.V1.00.05")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.code);
        Bench bench;
        bench.BootToNormal();
        bench.dvr.Receive(Request(c.code));
        const auto sent = bench.During(milliseconds(15));
        ASSERT_EQ(sent.size(), 1U);
        EXPECT_EQ(sent[0].payload, c.payload);
    }
}

TEST(DvrAnswers, OneAfterTheOtherAndAFloodOnlyInPart) {
    Bench bench;
    bench.BootToNormal();
    for (int i = 0; i < 1000; ++i) {
        for (const std::uint8_t byte : Request(i % 2 == 0 ? 0x8010 : 0x8011)) {
            bench.dvr.Receive({&byte, 1});
        }
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
    bench.dvr.Receive(Request(0x8010));
    EXPECT_EQ(bench.During(milliseconds(15)).size(), 1U);
}

TEST(DvrCard, ReportsComingAndGoingOnce) {
    Bench bench;
    bench.BootToNormal();
    EXPECT_FALSE(bench.dvr.RemoveCard());
    EXPECT_TRUE(bench.dvr.InsertCard(bench.card.path));
    EXPECT_FALSE(bench.dvr.InsertCard(bench.card.path));
    auto sent = bench.During(milliseconds(500));
    ASSERT_EQ(bench.Only(0x80, 0x0026).size(), 1U);
    EXPECT_EQ(sent[0].payload, (Bytes{1, 0, 42}));
    EXPECT_TRUE(bench.dvr.RemoveCard());
    bench.During(milliseconds(500));
    ASSERT_EQ(bench.Only(0x80, 0x0026).size(), 1U);
    EXPECT_EQ(bench.Only(0x80, 0x0026)[0].payload[0], 0);
    // In and out again before the contacts have settled.
    bench.dvr.InsertCard(bench.card.path);
    bench.host.Run(milliseconds(100));
    bench.dvr.RemoveCard();
    bench.During(milliseconds(1000));
    EXPECT_TRUE(bench.Only(0x80, 0x0026).empty());
}

TEST(DvrCard, ReportsAnyStatusOnDemand) {
    for (int status = 0; status <= 6; ++status) {
        SCOPED_TRACE(status);
        Bench bench;
        bench.dvr.InsertCard(bench.card.path);
        bench.BootToNormal();
        bench.host.sent.clear();
        bench.dvr.ReportCard(static_cast<CardStatus>(status));
        ASSERT_EQ(bench.host.sent.size(), 1U);
        EXPECT_EQ(bench.host.sent[0].code, 0x0026);
        EXPECT_EQ(bench.host.sent[0].payload[0], status);
        bench.dvr.Receive(Request(0x8026));
        bench.During(milliseconds(15));
        // A condition lasts; a false report of absence does not.
        ASSERT_EQ(bench.Only(0x20, 0x8026).size(), 1U);
        EXPECT_EQ(bench.Only(0x20, 0x8026)[0].payload[0], status < 2 ? 1 : status);
    }
}

TEST(DvrRecording, OneReportASecondWhileACardIsIn) {
    Bench bench;
    bench.BootToNormal();
    bench.During(milliseconds(3000));
    EXPECT_TRUE(bench.Only(0x80, 0x0022).empty());
    bench.dvr.InsertCard(bench.card.path);
    bench.During(milliseconds(65500));
    const auto ticks = bench.Only(0x80, 0x0022);
    ASSERT_GE(ticks.size(), 62U);
    ASSERT_LE(ticks.size(), 68U);
    EXPECT_EQ(ticks[0].payload, (Bytes{'1', 0, '0', '0', '0', '0', '0', '1'}));
    EXPECT_EQ(ticks[60].payload, (Bytes{'1', 0, '0', '0', '0', '1', '0', '1'}));
    const std::pair<Bytes, bool> orders[] = {{Request(0x0022, 0), false},
                                             {Request(0x0022, '1'), true},
                                             {Request(0x0011, 2), false},
                                             {Request(0x0011, 0), true}};
    for (const auto& [order, recording] : orders) {
        bench.dvr.Receive(order);
        bench.host.Run(milliseconds(15));
        EXPECT_EQ(bench.dvr.Recording(), recording);
    }
    bench.dvr.RemoveCard();
    bench.During(milliseconds(5000));
    ASSERT_GE(bench.Only(0x80, 0x0022).size(), 1U);
    EXPECT_EQ(bench.Only(0x80, 0x0022).back().payload[0], '0');
    EXPECT_TRUE(bench.During(milliseconds(5000)).empty());
}

}  // namespace
}  // namespace dvrsim
