#include <gtest/gtest.h>

#include <algorithm>

#include "platform/kernel/thread.h"
#include "tests/bench/wizard_bench.h"
#include "tests/support/run_modes.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

// The link ends first, then the screen is switched back, then the power detector ends.
TEST(Closing, EndsInOrderFromEveryStep) {
    for (int step = -1; step <= 6; ++step) {
        SCOPED_TRACE(step);
        WizardBench bench;
        bench.GoTo(step);
        bench.Command(IDC_BTN_CLOSE);
        bench.RunFor(500ms);
        ASSERT_TRUE(bench.Ended());
        const std::vector<std::string> log = bench.TakeLog();
        auto after = log.begin();
        for (const std::string_view line :
             {"---ThreadProc_COM_Rx", "+++Mstar_C4_Scaler_DeInit", "---Mstar_C4_Scaler_DeInit",
              "+++CPowerDetector::DeInit", "---CPowerDetector::DeInit"}) {
            after = std::find(after, log.end(), line);
            EXPECT_NE(after, log.end()) << line;
        }
    }
}

// What another application sends comes in while the window waits for the receive thread.
TEST(Closing, ShowsNoNoticeForAPressThatIsSentMeanwhile) {
    WizardBench bench;
    bench.GoTo(-1);
    bench.Post(WM_CLOSE);
    const HWND window = FindWindowW(L"Tolvane", nullptr);
    platform::kernel::StartThread([window] {
        Sleep(1);
        SendMessageW(window, 2024, IDC_BTN_NEXT, 0);
        return DWORD{0};
    });
    bench.RunFor(500ms);
    EXPECT_TRUE(bench.Ended());
    EXPECT_EQ(bench.Step(), WizardBench::kNoFrame);
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
