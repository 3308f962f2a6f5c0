#include "unit/line/line_faults.h"

#include <gtest/gtest.h>

#include "tests/support/cases.h"
#include "tests/unit_line/tapped_line.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using enum unit::Direction;

TEST(LineFaults, RulesChangeBytesTheSameForAnyChunks) {
    const auto cases = CasesFrom(LINE_CASES "/line-faults.txt");
    EXPECT_EQ(cases.size(), 36U);
    for (const auto& [input, result] : cases)
        for (const bool byte_by_byte : {false, true}) {
            SCOPED_TRACE(input + (byte_by_byte ? "byte by byte" : ""));
            TappedLine line;
            // Rules begin with a word, chunks with a time.
            std::istringstream lines(input);
            for (std::string text; std::getline(lines, text);)
                text[0] < 'a' ? line.Send(kToUnit, text, byte_by_byte) : line.Add(text);
            line.RunFor(1s);
            std::string applied = "; applied";
            for (const unit::LineFaults::Entry& entry : line.faults->List())
                applied += " " + std::to_string(entry.applied);
            EXPECT_EQ(line.program.text() + applied, result);
            EXPECT_EQ(line.observed_to_unit.text(), line.program.text());
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

}  // namespace
}  // namespace tests
