#include <gtest/gtest.h>

#include <algorithm>

#include "platform/window/screen.h"
#include "tests/bench/wizard_bench.h"
#include "tests/support/run_modes.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

using Log = std::vector<std::string>;

TEST(Closing, EndsInOrderFromEveryStep) {
    for (int step = -1; step <= 6; ++step) {
        SCOPED_TRACE(step);
        WizardBench bench;
        bench.GoTo(step);
        bench.Command(IDC_BTN_CLOSE);
        bench.RunFor(500ms);
        ASSERT_TRUE(bench.Ended());
        EXPECT_EQ(bench.Step(), WizardBench::kNoFrame);
        EXPECT_EQ(bench.TakeFrames(), "");
        EXPECT_EQ(bench.scaler->Take(), step < 0 ? Log() : WizardBench::kVideoOff);
        const Log log = bench.TakeLog();
        for (const std::string& line : log)
            EXPECT_EQ(line.find("fail!!!"), line.npos) << line;
        // The link ends first, then the screen is switched back, then the power detector ends.
        const auto place = [&](std::string_view line) { return std::ranges::find(log, line); };
        EXPECT_LT(place("---ThreadProc_COM_Rx"), place("+++Mstar_C4_Scaler_DeInit"));
        EXPECT_LT(place("---Mstar_C4_Scaler_DeInit"), place("+++CPowerDetector::DeInit"));
        EXPECT_NE(place("---CPowerDetector::DeInit"), log.end());
    }
}

TEST(Closing, FollowsTheRightMessagesAlone) {
    struct {
        int step;
        std::function<void(WizardBench&)> act;
        bool closes;
    } const rows[] = {
        {-1, [](WizardBench& bench) { bench.Post(WM_COMMAND, ID_APP_EXIT); }, true},
        {-1, [](WizardBench& bench) { bench.Post(WM_COMMAND, MAKEWPARAM(ID_APP_EXIT, 1)); }, true},
        {-1, [](WizardBench& bench) { bench.Post(WM_COMMAND, ID_FILE_NEW); }, false},
        {-1, [](WizardBench& bench) { bench.Post(WM_COMMAND, ID_APP_ABOUT); }, false},
        {-1, [](WizardBench& bench) { bench.TapAt(757, 26); }, false},
        {5, [](WizardBench& bench) { bench.TapAt(757, 26); }, true},
        {5, [](WizardBench& bench) { bench.Post(WM_QUIT); }, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        WizardBench bench;
        bench.GoTo(row.step);
        row.act(bench);
        bench.RunFor(500ms);
        EXPECT_EQ(bench.Ended(), row.closes);
        if (!row.closes) {
            EXPECT_EQ(bench.Buttons(), "Power On");
            EXPECT_EQ(platform::window::TopLevelWindows().size(), 1U);
        }
    }
}

TEST(Closing, BeforeAnyPaintingMissesTheBackBuffer) {
    WizardBench bench;
    bench.Start(SW_HIDE);
    bench.Mark();
    bench.Close();
    EXPECT_EQ(bench.TakeLog("CMainFrame::"),
              Log(2, "\tCMainFrame::~CMainFrame, Invalid Arguments!!!, MainFrm.cpp(#)"));
}

TEST(Closing, UnderTheNoticeLetsNothingFollow) {
    for (const int step : {-1, 3}) {
        WizardBench bench;
        bench.GoTo(step);
        if (step == -1)
            bench.Tap("Power On");
        bench.RunFor(3500ms);
        ASSERT_TRUE(bench.Shows("OK"));
        bench.Mark();
        bench.Post(WM_CLOSE);
        bench.RunFor(10s);
        EXPECT_TRUE(bench.Ended());
        EXPECT_EQ(bench.Step(), WizardBench::kNoFrame);
        EXPECT_EQ(bench.TakeFrames(), "");
        EXPECT_EQ(bench.reset->Take(), Log());
        EXPECT_EQ(bench.TakeLog("CMainFrame::"), Log());
    }
}

TEST(Closing, WaitsForTheCommandThatRuns) {
    for (const auto& [step, button, wait] :
         {std::tuple(1, "Update", 4000ms), std::tuple(4, "Next", 2000ms)}) {
        WizardBench bench;
        bench.GoTo(step);
        bench.Card(1);
        bench.RunFor(20ms);
        ASSERT_TRUE(bench.Tap(button));
        bench.After(500ms, [&] { bench.Post(WM_CLOSE); });
        bench.RunFor(wait - 50ms);
        EXPECT_FALSE(bench.Ended());
        bench.RunFor(300ms);
        EXPECT_TRUE(bench.Ended());
    }
}

TEST(Closing, AWizardWithoutALinkEndsAsWell) {
    WizardBench bench;
    bench.Remove(L"COM9:");
    bench.Start();
    EXPECT_EQ(bench.TakeLog("CMainFrame::OnCreate, UART"),
              Log{"\tCMainFrame::OnCreate, UART_Init() fail!!!, ErrorCode(55), MainFrm.cpp(#)"});
    bench.RunFor(2s);
    EXPECT_EQ(bench.Buttons(), "Power On");
    bench.Close();
    EXPECT_EQ(bench.TakeFrames(), "");
}

class ClosingInEveryMode : public InEveryMode {};
INSTANTIATE_IN_EVERY_MODE(ClosingInEveryMode);

// Each report makes the receive thread repaint the window that waits for it.
TEST_P(ClosingInEveryMode, UnderAFloodOfCardReportsComesToAnEnd) {
    for (const int step : {0, 1}) {
        platform::kernel::Options options = GetParam().options;
        options.speed = 20;
        WizardBench bench(options);
        bench.GoTo(step);
        BYTE status = 0;
        std::function<void()> flood = [&] {
            bench.Card(status ^= 1);
            bench.After(400us, flood);
        };
        flood();
        bench.RunFor(20ms);
        bench.Post(WM_CLOSE);
        EXPECT_TRUE(bench.Until([&] { return bench.Ended(); }, 5s));
    }
}

}  // namespace
}  // namespace tests
