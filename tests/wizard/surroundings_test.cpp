#include <gtest/gtest.h>

#include "platform/kernel/call_faults.h"
#include "platform/window/screen.h"
#include "tests/bench/wizard_bench.h"

namespace tests {
namespace {

TEST(Painting, MakesItsBackBufferOnce) {
    WizardBench bench;
    bench.Start();
    const auto drawn = platform::kernel::CallCount("BitBlt");
    for (int count = 0; count < 5; ++count) {
        bench.Post(WM_TIMER, 261);
        bench.RunFor(5ms);
    }
    EXPECT_GT(platform::kernel::CallCount("BitBlt"), drawn);
    EXPECT_EQ(platform::kernel::CallCount("CreateCompatibleBitmap"), 1U);
}

// While the window's thread sleeps in a command, too; and the wizard learns nothing of it.
TEST(PowerRequests, AreAcknowledgedDuringTheUpdate) {
    constexpr wchar_t kSuspendRequest[] = L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_";
    constexpr wchar_t kAcknowledge[] = L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_";
    WizardBench bench;
    std::vector<std::wstring> heard;
    platform::window::ObserveBroadcasts([&](UINT message, WPARAM wparam, LPARAM lparam) {
        EXPECT_EQ(wparam, 0U);
        EXPECT_EQ(lparam, 0);
        heard.push_back(platform::window::RegisteredMessageName(message));
    });
    bench.GoTo(1);
    bench.Card(1);
    bench.RunFor(20ms);
    ASSERT_TRUE(bench.Tap("Update"));
    bench.RunFor(500ms);
    for (const int step : {2, 2}) {
        bench.Mark();
        heard.clear();
        bench.After(1ms, [&] {
            const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, kSuspendRequest);
            EXPECT_TRUE(SetEvent(event));
            CloseHandle(event);
        });
        bench.RunFor(2ms);
        EXPECT_EQ(heard, std::vector<std::wstring>{kAcknowledge});
        EXPECT_EQ(bench.Step(), step);
        EXPECT_EQ(bench.TakeFrames(), "");
        EXPECT_EQ(bench.TakeLog(), std::vector<std::string>());
        // The second time in the middle of the progress.
        bench.Percent(57);
        bench.RunFor(2500ms);
        EXPECT_TRUE(bench.Shows("Update Percent : 57%"));
    }
}

}  // namespace
}  // namespace tests
