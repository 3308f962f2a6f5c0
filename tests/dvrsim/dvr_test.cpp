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
}

}  // namespace
}  // namespace dvrsim
