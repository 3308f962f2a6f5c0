// The whole program on a line with faults.
#include <gtest/gtest.h>

#include "tests/rig/wizard_run.h"
#include "unit/line/fault_text.h"
#include "unit/line/frame_monitor.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::VirtualUnit;

void Add(WizardRun& run, const std::string& text) {
    std::string problem;
    const auto rule = unit::ParseFaultRule(text, problem);
    ASSERT_TRUE(rule) << problem;
    run.unit().dvr().faults().Add(*rule);
}

constexpr wchar_t kPercentStart[] = L"Update Percent : ";

TEST(FaultyLine, PercentReportsWithBadChecksumsAreDroppedUntilTheRuleGoes) {
    WizardRun run;
    unit::LineHistory history;
    const auto listening = run.unit().events().Listen([&](const unit::TimedEvent& event) {
        if (const auto* bytes = std::get_if<unit::LineBytes>(&event.event))
            history.Take(event.time, *bytes);
    });
    run.GoToUpdating();
    ASSERT_TRUE(run.WaitForText(L"Update Percent : 30%", 30s));
    Add(run, "corrupt checksum of FW_Upgrade_Version indications to-unit");
    const std::size_t before = run.lines().size();
    run.RunFor(5s);
    EXPECT_TRUE(run.screen().Shows(L"Update Percent : 30%")) << "it stands still";
    EXPECT_GE(run.unit().dvr().dvr()->Percent(), 40) << "while the DVR goes on";
    const std::vector<std::string> lines = run.lines();
    for (std::size_t line = before; line < lines.size(); ++line)
        EXPECT_EQ(lines[line].find("Percent:"), std::string::npos) << "dropped without a word";
    const std::uint64_t applied = run.unit().dvr().faults().List().at(0).applied;
    EXPECT_GE(applied, 10U);
    std::size_t damaged = 0;
    for (const unit::LineEntry& entry : history.Since(0, 10min))
        if (!entry.checksum_good()) {
            ++damaged;
            EXPECT_NE(entry.Text().find("'14.09.01.V1.02.03'  checksum bad"), std::string::npos)
                << entry.Text();
        }
    EXPECT_EQ(damaged, applied) << "and nothing else is damaged";

    run.unit().dvr().faults().Clear();
    EXPECT_TRUE(run.RunUntil([&] { return !run.screen().Shows(L"Update Percent : 30%"); }, 2s));
    EXPECT_TRUE(run.WaitForText(L"OK", 60s)) << "it ends like any other update";
}

TEST(FaultyLine, ChanceGivesTheSameRunForTheSameSeed) {
    const auto walk = [](const std::string& seed) {
        WizardRun run;
        Add(run, "corrupt bytes chance 2 seed " + seed);
        EXPECT_TRUE(run.WaitForText(L"Power On", 60s));
        run.RunFor(20s);
        EXPECT_GT(run.unit().dvr().faults().List().at(0).applied, 0U);
        run.Close();
        return run.output();
    };
    const std::string first = walk("3");
    EXPECT_EQ(first, walk("3"));
    EXPECT_NE(first, walk("4"));
}

TEST(FaultyLine, PseudoTerminalHasTheSameFaults) {
    VirtualUnit::Options options;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = 10;
    options.dvr.line = unit::DvrBay::Line::kPseudoTerminal;
    WizardRun run(options);
    for (const char* rule : {"inject 00A5 before FW_Upgrade_Version indications",
                             "split 1ms frames", "delay 20ms StorageCardStatus acknowledgements",
                             "duplicate plain DVR_RunningState frames"})
        Add(run, rule);
    run.GoToUpdating();
    run.unit().SetPlugged(false);
    // What was read before the plug was out may still be on its way to the screen.
    run.RunFor(1s);
    const std::wstring stands = run.screen().TextStartingWith(kPercentStart);
    run.RunFor(4s);
    EXPECT_EQ(run.screen().TextStartingWith(kPercentStart), stands);
    run.unit().SetPlugged(true);
    EXPECT_TRUE(run.RunUntil([&] { return !run.screen().Shows(stands); }, 20s));
    for (const auto& entry : run.unit().dvr().faults().List())
        EXPECT_GT(entry.applied, 0U) << unit::ToText(entry.rule);
}

}  // namespace
}  // namespace tests
