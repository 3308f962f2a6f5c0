#include <gtest/gtest.h>

#include "tests/rig/wizard_run.h"
#include "unit/line/fault_text.h"

namespace tests {
namespace {

using namespace std::chrono_literals;

// The whole program on a line that is no memory; the scenarios tell of faults on one that is.
TEST(FaultyLine, FreeRunningAPseudoTerminalHasTheSameFaults) {
    unit::VirtualUnit::Options options;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = 10;
    options.dvr.line = unit::DvrBay::Line::kPseudoTerminal;
    WizardRun run(options);
    unit::LineFaults& faults = run.unit().dvr().faults();
    for (const char* text : {"inject 00A5 before FW_Upgrade_Version indications",
                             "split 1ms frames", "delay 20ms StorageCardStatus acknowledgements",
                             "duplicate plain DVR_RunningState frames"}) {
        std::string problem;
        faults.Add(*unit::ParseFaultRule(text, problem));
    }
    run.GoToUpdating();
    run.unit().SetPlugged(false);
    // What was read before the plug was out may still be on its way to the screen.
    run.RunFor(1s);
    const std::wstring stands = run.screen().TextStartingWith(L"Update Percent : ");
    run.RunFor(4s);
    EXPECT_TRUE(run.screen().Shows(stands));
    run.unit().SetPlugged(true);
    EXPECT_TRUE(run.RunUntil([&] { return !run.screen().Shows(stands); }, 20s));
    for (const auto& entry : faults.List())
        EXPECT_GT(entry.applied, 0U) << unit::ToText(entry.rule);
}

}  // namespace
}  // namespace tests
