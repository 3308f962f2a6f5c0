#include "unit/recording/line_burst.h"

#include <gtest/gtest.h>

#include "control/words.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Direction;
using unit::LineBytes;

struct Arrival {
    std::chrono::microseconds time;
    std::vector<std::uint8_t> bytes;
};

// The bursts that a recording makes of what arrives.
std::vector<unit::BurstJoiner::Burst> Join(const std::vector<Arrival>& arrivals,
                                           Direction direction = Direction::kToUnit) {
    unit::BurstJoiner joiner;
    std::vector<unit::BurstJoiner::Burst> bursts;
    for (const Arrival& arrival : arrivals)
        if (auto burst = joiner.Take(arrival.time, {direction, arrival.bytes}))
            bursts.push_back(std::move(*burst));
    if (auto burst = joiner.End())
        bursts.push_back(std::move(*burst));
    return bursts;
}

TEST(LineBurst, TheTextTellsEveryBytesTime) {
    // 460800 baud: a byte takes 21.7013888... us; rounded up, the Nth of a run that began at 0 has
    // passed at 22, 44, 66, 87, 109, 131, 152.
    const struct {
        std::vector<Arrival> arrivals;
        const char* text;
    } cases[] = {
        {{{1000us, {0xA5, 0x5A}}}, "A5 5A"},
        {{{1022us, {0xA5}}, {1044us, {0x5A}}, {1066us, {0x80}}, {1087us, {0x00}}, {1109us, {0x10}}},
         "wire A5 5A 80 00 10"},
        // One microsecond off the wire's pace.
        {{{1022us, {0xA5}}, {1044us, {0x5A}}, {1067us, {0x80}}}, "A5 +22 5A +23 80"},
        {{{5us, {1, 2}}, {1405us, {3}}, {3405us, {4}}}, "01 02 +1400 03 +2000 04"},
        {{{7us, {1}}, {7us, {2}}}, "01 02"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const auto bursts = Join(c.arrivals);
        ASSERT_EQ(bursts.size(), 1U);
        EXPECT_EQ(bursts[0].time, c.arrivals[0].time);
        EXPECT_EQ(BurstText(bursts[0].burst), c.text);

        std::string problem;
        const auto words = control::SplitWords(c.text, problem);
        const auto pieces = unit::ReadPieces(*words, problem);
        ASSERT_TRUE(pieces) << problem;
        std::vector<Arrival> read;
        for (const unit::LinePiece& piece : *pieces)
            for (const std::uint8_t byte : piece.bytes)
                read.push_back({bursts[0].time + piece.after, {byte}});
        std::size_t at = 0;
        for (const Arrival& arrival : c.arrivals)
            for (const std::uint8_t byte : arrival.bytes) {
                ASSERT_LT(at, read.size());
                EXPECT_EQ(read[at].time, arrival.time);
                EXPECT_EQ(read[at++].bytes[0], byte);
            }
        EXPECT_EQ(at, read.size());
    }
}

TEST(LineBurst, APauseASendingAndManyBytesBeginAnother) {
    EXPECT_EQ(Join({{0us, {1}}, {2000us, {2}}, {4001us, {3}}}).size(), 2U);
    EXPECT_EQ(Join({{0us, {1}}, {0us, {2}}}, Direction::kToDvr).size(), 2U);
    const std::vector<std::uint8_t> many(200);
    EXPECT_EQ(Join({{0us, many}, {1us, many}}).size(), 2U);
}

TEST(LineBurst, WhatIsNoBurstIsRefusedWithWhatIsAllowed) {
    const char kByte[] = "; allowed is a byte as two hexadecimal digits";
    const char kByteOrGap[] =
        "; allowed is a byte as two hexadecimal digits, or + and the microseconds to the next byte";
    const struct {
        const char* text;
        std::string problem;
    } cases[] = {
        {"", std::string("something is missing") + kByte},
        {"A5 +10", std::string("something is missing") + kByte},
        {"wire", std::string("something is missing") + kByte},
        {"+10 A5", std::string("'+10' is not allowed") + kByte},
        {"A5 +1 +2 5A", std::string("'+2' is not allowed") + kByte},
        {"A5 5", std::string("'5' is not allowed") + kByteOrGap},
        {"A5 5AA", std::string("'5AA' is not allowed") + kByteOrGap},
        {"A5 G0", std::string("'G0' is not allowed") + kByteOrGap},
        {"A5 +-1 00", std::string("'+-1' is not allowed") + kByteOrGap},
        {"A5 +9999999999 00", std::string("'+9999999999' is not allowed") + kByteOrGap},
        {"wire A5 +1 00", std::string("'+1' is not allowed") + kByte},
    };
    for (const auto& c : cases) {
        std::string problem;
        const auto words = control::SplitWords(c.text, problem);
        EXPECT_FALSE(unit::ReadPieces(*words, problem)) << c.text;
        EXPECT_EQ(problem, c.problem) << c.text;
    }
}

}  // namespace
}  // namespace tests
