#include <gtest/gtest.h>

#include <algorithm>

#include "platform/kernel/thread.h"
#include "tests/harness/wizard_harness.h"
#include "tests/support/run_modes.h"
#include "ui/DrawCtrl.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

// The link ends first, then the screen is switched back, then the power detector ends.
TEST(Closing, EndsInOrderFromEveryStep) {
    for (int step = -1; step <= 6; ++step) {
        SCOPED_TRACE(step);
        WizardHarness harness;
        harness.GoTo(step);
        harness.Command(IDC_BTN_CLOSE);
        harness.RunFor(500ms);
        ASSERT_TRUE(harness.Ended());
        const std::vector<std::string> log = harness.TakeLog();
        auto after = log.begin();
        for (const std::string_view line :
             {"---ThreadProc_COM_Rx", "+++Mstar_C4_Scaler_DeInit", "---Mstar_C4_Scaler_DeInit",
              "+++CPowerDetector::DeInit", "---CPowerDetector::DeInit"}) {
            after = std::find(after, log.end(), line);
            EXPECT_NE(after, log.end()) << line;
        }
    }
}

// While the window waits for the receive thread, another application sends it what would open the
// notice, reset the DVR or start the video. The frame pointer stays cleared.
TEST(Closing, BeginsNothingThatIsSentMeanwhile) {
    const struct {
        int step;
        UINT message;
        WPARAM id;
    } rows[] = {
        {-1, WM_XCOMMAND, IDC_BTN_NEXT},      {0, WM_XCOMMAND, IDC_BTN_NEXT},
        {1, WM_XCOMMAND, IDC_BTN_UPDATE},     {3, WM_TIMER, TIMER_NOTIFY},
        {6, WM_TIMER, TIMER_COMPOSITE_VIDEO},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step);
        WizardHarness harness;
        harness.GoTo(row.step);
        const int resets = harness.reset->opens;
        const int scaler_opens = harness.scaler->opens;
        harness.Post(WM_CLOSE);
        const HWND window = FindWindowW(L"Tolvane", nullptr);
        platform::kernel::StartThread([&row, window] {
            Sleep(1);
            SendMessageW(window, row.message, row.id, 0);
            return DWORD{0};
        });
        harness.RunFor(500ms);
        EXPECT_TRUE(harness.Ended());
        EXPECT_EQ(harness.Step(), WizardHarness::kNoFrame);
        EXPECT_EQ(harness.TakeLog("CNotify").size(), 0U);
        EXPECT_EQ(harness.reset->opens, resets);
        EXPECT_EQ(harness.scaler->opens, scaler_opens);
    }
}

class ClosingInEveryMode : public InEveryMode {};
INSTANTIATE_IN_EVERY_MODE(ClosingInEveryMode);

// Each report makes the receive thread repaint the window that waits for it.
TEST_P(ClosingInEveryMode, EndsUnderAFloodOfCardReports) {
    for (const int step : {0, 1}) {
        platform::kernel::Options options = GetParam().options;
        options.speed = 20;
        WizardHarness harness(options);
        harness.GoTo(step);
        BYTE status = 0;
        std::function<void()> flood = [&] {
            harness.Card(status ^= 1);
            harness.After(400us, flood);
        };
        flood();
        harness.RunFor(20ms);
        harness.Post(WM_CLOSE);
        EXPECT_TRUE(harness.Until([&] { return harness.Ended(); }, 5s));
    }
}

}  // namespace
}  // namespace tests
