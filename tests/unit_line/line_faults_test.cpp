#include "unit/line/line_faults.h"

#include <gtest/gtest.h>

#include "tests/unit_line/tapped_line.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using enum unit::Direction;

struct FaultCase {
    std::vector<const char*> rules;
    const char* sent;
    const char* arrives;
    std::vector<std::uint64_t> applied;
};

const FaultCase kFaultCases[] = {
    // Bytes.
    {{"drop bytes after 1 every 2"}, "0: 01 02 03 04 05", "0: 01 02 04", {2}},
    {{"drop bytes after 2 times 1"}, "0: 01 02 / 9: 03 04", "0: 01 02 / 9: 04", {1}},
    {{"corrupt bytes"}, "0: 00 5A", "0: FF A5", {2}},
    {{"corrupt bytes value 77 times 1"}, "0: 01 02", "0: 77 02", {1}},
    {{"delay 0.5ms bytes times 1"}, "0: 01 / 400: 02 / 2000: 03", "500: 01 02 / 2000: 03", {1}},
    {{"delay 0.5ms bytes", "delay 0.2ms bytes"}, "0: 01 / 400: 02", "500: 01 / 900: 02", {2, 2}},
    {{"split 1ms bytes every 2"}, "0: 01 02 03", "0: 01 / 1000: 02 03", {1}},
    {{"inject CCDD before bytes times 1"}, "0: 01 02", "0: CC DD 01 02", {1}},
    {{"inject CC after bytes"}, "0: 01 02", "0: 01 CC 02 CC", {2}},
    {{"drop bytes to-dvr"}, "0: 01", "0: 01", {0}},
    // Frames and their parts.
    {{"drop frames"}, "0: PERCENT / 5: 77 / 9: CARD", "5: 77", {2}},
    {{"drop sync of frames"}, "0: PERCENT", "0: 80 00 2E 00 01 39 01 E7", {1}},
    {{"corrupt type of frames value 20"}, "0: PERCENT", "0: A5 5A 20 00 2E 00 01 39 01 E7", {1}},
    {{"corrupt code of frames xor 8001"}, "0: PERCENT", "0: A5 5A 80 80 2F 00 01 39 01 E7", {1}},
    {{"corrupt length 1 of frames value 09"},
     "0: PERCENT",
     "0: A5 5A 80 00 2E 00 09 39 01 E7",
     {1}},
    {{"corrupt payload 2 of frames value 11"},
     "0: PERCENT / 9: CARD",
     "0: PERCENT / 9: A5 5A 80 00 26 00 03 01 00 11 02 03",
     {1}},
    {{"drop StorageCardStatus frames"}, "0: CARD / 5: PERCENT / 9: ACK", "5: PERCENT", {2}},
    {{"drop acknowledgements"}, "0: ACK / 5: PERCENT", "5: PERCENT", {1}},
    {{"drop query StorageCardStatus frames"}, "0: ACK / 5: CARD", "5: CARD", {1}},
    {{"drop plain frames to-unit"}, "0: ACK / 5: CARD", "0: ACK", {1}},
    {{"drop 0x0055 frames"}, "0: A5 5A 80 00 55 00 00 01 D4 / 5: CARD", "5: CARD", {1}},
    {{"duplicate frames every 2"}, "0: PERCENT / 5: CARD", "0: PERCENT / 5: CARD CARD", {1}},
    {{"delay 300ms acknowledgements"}, "0: ACK / 400: CARD", "300000: ACK CARD", {1}},
    {{"split 20ms frames"}, "0: PERCENT", "0: A5 5A 80 00 2E / 20000: 00 01 39 01 E7", {1}},
    {{"split 1ms checksum of frames"},
     "0: PERCENT",
     "0: A5 5A 80 00 2E 00 01 39 / 1000: 01 E7",
     {1}},
    {{"inject EE after frames after 1 times 1"},
     "0: CARD / 5: CARD / 9: CARD",
     "0: CARD / 5: CARD EE / 9: CARD",
     {1}},
    // Rules about frames ignore damaged frames.
    {{"drop frames"},
     "0: A5 5A 80 00 2E 00 01 39 01 E6 / 5: PERCENT",
     "0: A5 5A 80 00 2E 00 01 39 01 E6",
     {1}},
    {{"drop frames"}, "0: A5 5A 80 00 2E 00 41 / 5: PERCENT", "0: A5 5A 80 00 2E 00 41", {1}},
    {{"drop frames"}, "0: A5 PERCENT", "0: A5", {1}},
    // Several rules, in order.
    {{"split 20ms sync of frames", "duplicate frames"}, "0: CARD", "20000: CARD CARD", {1, 1}},
    {{"delay 300ms frames", "split 20ms frames"},
     "0: PERCENT",
     "300000: A5 5A 80 00 2E / 320000: 00 01 39 01 E7",
     {1, 1}},
    {{"drop bytes times 1", "corrupt payload of frames value AA"},
     "0: PERCENT",
     "0: 5A 80 00 2E 00 01 AA 01 E7",
     {1, 1}},
    {{"drop checksum of frames", "corrupt checksum of frames"},
     "0: PERCENT",
     "0: A5 5A 80 00 2E 00 01 39",
     {1, 0}},
};

TEST(LineFaults, RulesChangeBytesTheSameForAnyChunks) {
    for (const FaultCase& c : kFaultCases)
        for (const bool byte_by_byte : {false, true}) {
            SCOPED_TRACE(std::string(c.rules[0]) + (byte_by_byte ? ", byte by byte" : ""));
            TappedLine line(c.rules);
            line.Send(kToUnit, c.sent, byte_by_byte);
            line.RunFor(1s);
            EXPECT_EQ(line.program.text(), c.arrives);
            EXPECT_EQ(line.observed_to_unit.text(), c.arrives);
            std::vector<std::uint64_t> applied;
            for (const unit::LineFaults::Entry& entry : line.faults->List())
                applied.push_back(entry.applied);
            EXPECT_EQ(applied, c.applied);
        }
}

TEST(LineFaults, SentBytesAreObservedBeforeTheFaults) {
    TappedLine line({"corrupt checksum of requests to-dvr", "delay 2ms requests to-dvr"});
    line.Send(kToDvr, "0: A5 5A 10 80 2E 00 01 00 01 BE");
    line.Send(kToUnit, "5: PERCENT");
    line.RunFor(10ms);
    EXPECT_EQ(line.observed_to_dvr.text(), "0: A5 5A 10 80 2E 00 01 00 01 BE");
    EXPECT_EQ(line.dvr.text(), "2000: A5 5A 10 80 2E 00 01 00 FE 41");
    EXPECT_EQ(line.program.text(), "5: PERCENT");
}

TEST(LineFaults, ChanceDependsOnTheSeed) {
    const auto dropped = [](const char* rule) {
        TappedLine line({rule});
        for (int block = 0; block < 100; ++block)
            for (int byte = 0; byte < 100; ++byte)
                line.Send(kToUnit, std::to_string(block) + ": 55");
        line.RunFor(10ms);
        const auto entry = line.faults->List().at(0);
        EXPECT_EQ(entry.matches, 10'000U);
        return std::pair(static_cast<double>(entry.applied), line.program.text());
    };
    const auto first = dropped("drop bytes chance 10 seed 7");
    EXPECT_NEAR(first.first, 1000, 120) << "four standard deviations";
    EXPECT_EQ(first, dropped("drop bytes chance 10 seed 7"));
    EXPECT_NE(first.second, dropped("drop bytes chance 10 seed 8").second);
    EXPECT_NEAR(dropped("drop bytes chance 0.5 seed 1").first, 50, 28);
}

TEST(LineFaults, AppliedFaultsAreReportedAndCountedAndRulesCanBeRemoved) {
    TappedLine line({"corrupt checksum of FW_Upgrade_Version indications to-unit",
                     "drop bytes after 11 times 1"});
    std::vector<std::string> reported;
    line.faults->OnApplied([&](const std::string& text) { reported.push_back(text); });
    line.Send(kToUnit, "0: PERCENT 01 02");
    line.RunFor(1ms);
    EXPECT_EQ(reported, (std::vector<std::string>{
                            "fault 1 (corrupt checksum of FW_Upgrade_Version indications to-unit): "
                            "IND FW_Upgrade_Version, 1 so far",
                            "fault 2 (drop bytes after 11 times 1): byte 02, 1 so far"}));
    EXPECT_TRUE(line.faults->Remove(1));
    EXPECT_FALSE(line.faults->Remove(1));
    EXPECT_EQ(line.faults->List().at(0).number, 2);
    line.faults->Clear();
    line.Add("drop bytes after 100");
    EXPECT_EQ(line.faults->List().at(0).number, 3) << "numbers are not used again";
    line.Send(kToUnit, "2000: PERCENT");
    line.RunFor(1ms);
    EXPECT_TRUE(line.program.text().ends_with("/ 2000: PERCENT"));
}

TEST(LineFaults, RulesThatMultiplyBytesAreLimited) {
    for (const char* const rule : {"duplicate bytes", "inject 0102030405060708 after bytes",
                                   "duplicate frames", "inject A55A before payload of frames"}) {
        SCOPED_TRACE(rule);
        TappedLine line(std::vector<const char*>(40, rule));
        std::size_t reported = 0;
        line.faults->OnApplied([&](const std::string&) { ++reported; });
        line.Send(kToUnit, "0: PERCENT");
        line.RunFor(1ms);
        EXPECT_LE(line.program.text().size(), 4 * unit::kMaxSlots);
        EXPECT_GE(reported, 40U);
        EXPECT_LE(reported, 10'000U);
    }
}

TEST(FaultText, ErrorsSayWhatIsAllowed) {
    const std::string long_rule = "inject " + std::string(514, '0') + " after bytes";
    const std::pair<const char*, const char*> cases[] = {
        {long_rule.c_str(), "a fault has 257 bytes of its own; allowed are up to 256"},
        {"melt bytes", "allowed is drop, corrupt, duplicate, delay, split or inject"},
        {"drop FW_Upgrade_Vision frames", "'FW_Upgrade_Vision' is no command of the DVR"},
        {"drop 0x8000 frames", "'0x8000' is no command of the DVR"},
        {"drop checksum of bytes", "single bytes have no part"},
        {"drop bytes chance 0", "above 0 and up to 100"},
        {"corrupt bytes xor G0", "pairs of hexadecimal digits"},
        {"drop bytes to-unit to-dvr", "'to-dvr' is not allowed"},
    };
    for (const auto& [text, says] : cases) {
        std::string problem;
        EXPECT_FALSE(unit::ParseFaultRule(text, problem)) << text;
        EXPECT_NE(problem.find(says), std::string::npos) << text << ": " << problem;
    }
}

}  // namespace
}  // namespace tests
