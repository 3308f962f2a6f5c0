#include "unit/recording/line_burst.h"

#include <gtest/gtest.h>

#include "control/words.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::Direction;

struct Arrival {
    std::chrono::microseconds time;
    std::vector<std::uint8_t> bytes;

    bool operator==(const Arrival&) const = default;
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
    const std::pair<std::vector<Arrival>, const char*> cases[] = {
        {{{1000us, {0xA5, 0x5A}}}, "A5 5A"},
        {{{1022us, {0xA5}}, {1044us, {0x5A}}, {1066us, {0x80}}, {1087us, {0x00}}, {1109us, {0x10}}},
         "wire A5 5A 80 00 10"},
        // One microsecond off the wire's pace.
        {{{1022us, {0xA5}}, {1044us, {0x5A}}, {1067us, {0x80}}}, "A5 +22 5A +23 80"},
        {{{5us, {1, 2}}, {1405us, {3}}, {3405us, {4}}}, "01 02 +1400 03 +2000 04"},
    };
    for (const auto& [arrivals, text] : cases) {
        SCOPED_TRACE(text);
        const auto bursts = Join(arrivals);
        ASSERT_EQ(bursts.size(), 1U);
        EXPECT_EQ(BurstText(bursts[0].burst), text);
        std::string problem;
        std::vector<Arrival> read;
        const auto pieces = unit::ReadPieces(*control::SplitWords(text, problem), problem);
        for (const unit::LinePiece& piece : pieces.value())
            read.push_back({bursts[0].time + piece.after, piece.bytes});
        EXPECT_EQ(read, arrivals);
    }
}

TEST(LineBurst, APauseASendingAndManyBytesBeginAnother) {
    EXPECT_EQ(Join({{0us, {1}}, {2000us, {2}}, {4001us, {3}}}).size(), 2U);
    EXPECT_EQ(Join({{0us, {1}}, {0us, {2}}}, Direction::kToDvr).size(), 2U);
    EXPECT_EQ(BurstText(Join({{7us, {1}}, {7us, {2}}}).at(0).burst), "01 02");
    const std::vector<std::uint8_t> many(200);
    EXPECT_EQ(Join({{0us, many}, {1us, many}}).size(), 2U);
}

}  // namespace
}  // namespace tests
