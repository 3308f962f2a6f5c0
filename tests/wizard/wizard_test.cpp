#include <gtest/gtest.h>

#include <algorithm>
#include <new>

#include "app/thread/ThreadEnd.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/thread.h"
#include "tests/harness/wizard_harness.h"
#include "tests/support/platform_test.h"
#include "wizard/MainFrm.h"

// What neither the reference model nor the scenarios check of the wizard.

namespace {

// The n-th allocation from now on that may fail does fail; 0: none.
std::size_t g_failing_allocation = 0;

bool AllocationFails() {
    return g_failing_allocation != 0 && --g_failing_allocation == 0;
}

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return AllocationFails() ? nullptr : ::operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return AllocationFails() ? nullptr : ::operator new[](size);
}

namespace tests {
namespace {

// The window comes up, the next painting makes up for one that fails, and a stray message is not
// taken for the unit's broadcast, which has no message then.
TEST(Failures, OfOneCallOfTheStartArePassedOver) {
    const std::string version = "File Version: 0.7.0.0\nProduct Version: 0.7.0.0\n";
    const std::pair<const char*, std::string> rows[] = {
        {"GetFileVersionInfoSizeW", "Error in GetFileVersionInfoSize: 1234\n"},
        {"GetFileVersionInfoW", "Error in GetFileVersionInfo: 1234\n"},
        {"VerQueryValueW", "Error in VerQueryValue: 1234\n"},
        {"RegisterWindowMessageW", version},
        {"BeginPaint", version},
        {"CreateCompatibleDC", version},
        {"CreateCompatibleBitmap", version},
        {"SelectObject", version},
    };
    for (const auto& [call, printed] : rows) {
        SCOPED_TRACE(call);
        testing::internal::CaptureStdout();
        WizardHarness harness;
        EXPECT_EQ(kernel::AddCallFault({.call = call, .error = 1234}), "");
        harness.Start();
        harness.Post(WM_NULL);
        harness.Post(WM_TIMER, TIMER_REPAINT);
        harness.RunFor(5ms);
        EXPECT_EQ(kernel::FailedCallCount(), 1U);
        EXPECT_TRUE(harness.Shows("Power On"));
        EXPECT_EQ(harness.Shows("Update Tool : V0.7.00"), printed == version);
        harness.Close();
        EXPECT_EQ(testing::internal::GetCapturedStdout(), printed);
    }
}

// Every allocation of the start in turn; nothing else of the program may fail.
TEST(Failures, OfAllocationsArePassedOver) {
    bool failed = true;
    for (std::size_t allocation = 1; failed; ++allocation) {
        SCOPED_TRACE(allocation);
        WizardHarness harness;
        g_failing_allocation = allocation;
        harness.Start();
        if (allocation == 1) {  // the frame itself
            harness.ExpectExit(0);
            harness.platform.AllowHandles(1);
            continue;
        }
        harness.Post(WM_XCOMMAND, IDC_BTN_NEXT);
        harness.RunFor(50ms);
        if (const HWND notice = FindWindowW(L"Dialog", nullptr))
            PostMessageW(notice, WM_CLOSE, 0, 0);
        harness.Percent(5);
        harness.RunFor(10s);
        harness.Close();
        failed = std::exchange(g_failing_allocation, 0) == 0;
    }
}

// External power returns while the report of the restarted DVR ends step 4: before the step is
// exchanged, and after that, when the report has no timer.
TEST(Restart, StandsAgainstTheReportOfTheRestartedDvr) {
    for (const wchar_t* const line : {L"DVR_RUNNING_STATE_NORMAL", L"SetTimer() fail!!!"}) {
        std::wstring_view awaited = line;
        WizardHarness harness;
        harness.StartAt(STEP_REMOVE_CARD);
        harness.SetAcLine(0);
        kernel::AddCallFault({.call = "SetTimer"});
        harness.platform.board.on_debug_output = [&awaited](std::wstring_view text) {
            if (awaited.empty() || text.find(awaited) == text.npos)
                return;
            awaited = {};
            SendMessageW(FindWindowW(L"Tolvane", nullptr), MSG_POWER_STATUS, AC_LINE_ONLINE, 0);
        };
        harness.Running(2);
        harness.RunFor(50ms);
        EXPECT_TRUE(awaited.empty());
        harness.Post(WM_TIMER, TIMER_REPAINT);
        harness.RunFor(5ms);
        EXPECT_EQ(g_pMainFrame.load()->m_nStep, STEP_POWER_ON);
        EXPECT_TRUE(harness.Shows("Power On"));
    }
}

// A window that is not painted keeps what painting would clear.
TEST(Restart, ForgetsTheVersionOfTheDvr) {
    WizardHarness harness;
    harness.Start(SW_HIDE);
    harness.SendBytes(model::Frame(0x20, 0x802E, std::vector<std::uint8_t>(17, '1')));
    harness.SetAcLine(0);
    ASSERT_NE(g_pMainFrame.load()->m_szDvrVersion.Load(), CVersionText::Characters{});
    harness.SetAcLine(1);
    EXPECT_EQ(g_pMainFrame.load()->m_szDvrVersion.Load(), CVersionText::Characters{});
}

// While the window waits for the receive thread, another application sends it what would open the
// notice, reset the DVR or start the video. The link ends first, then the screen is switched back,
// then the power detector ends.
TEST(Closing, EndsInOrderAndBeginsNothingThatIsSentMeanwhile) {
    const std::tuple<int, UINT, WPARAM> rows[] = {
        {STEP_POWER_ON, WM_XCOMMAND, IDC_BTN_NEXT},
        {STEP_CHECK_CARD, WM_XCOMMAND, IDC_BTN_NEXT},
        {STEP_INSERT_CARD, WM_XCOMMAND, IDC_BTN_UPDATE},
        {STEP_WAIT, WM_TIMER, TIMER_NOTIFY},
        {STEP_REOPEN, WM_TIMER, TIMER_COMPOSITE_VIDEO},
    };
    for (const auto& [step, message, id] : rows) {
        SCOPED_TRACE(step);
        WizardHarness harness;
        harness.StartAt(step);
        harness.Post(WM_CLOSE);
        const HWND window = FindWindowW(L"Tolvane", nullptr);
        kernel::StartThread([window, message = message, id = id] {
            Sleep(1);
            SendMessageW(window, message, id, 0);
            return DWORD{0};
        });
        harness.RunFor(500ms);
        EXPECT_TRUE(harness.Ended());
        EXPECT_EQ(g_pMainFrame.load(), nullptr);
        EXPECT_EQ(harness.reset->opens, 0);
        EXPECT_EQ(harness.scaler->opens, 0);
        const std::vector<std::string> log = harness.TakeLog();
        auto after = log.begin();
        for (const std::string_view line :
             {"---ThreadProc_COM_Rx", "+++Mstar_C4_Scaler_DeInit", "---Mstar_C4_Scaler_DeInit",
              "+++CPowerDetector::DeInit", "---CPowerDetector::DeInit"}) {
            after = std::find(after, log.end(), line);
            EXPECT_NE(after, log.end()) << line;
        }
        EXPECT_EQ(std::ranges::count(log, "\tCNotify::OnInitDialog"), 0);
    }
}

EVERY_MODE_SUITE(ClosingInEveryMode);

// Each report makes the receive thread repaint the window that waits for it.
TEST_P(ClosingInEveryMode, EndsUnderAFloodOfCardReports) {
    kernel::Options options = GetParam().options;
    options.speed = 4;
    BYTE status = 0;
    std::function<void()> flood;
    WizardHarness harness(options);
    harness.StartAt(STEP_CHECK_CARD);
    flood = [&] {
        harness.Card(status ^= 1);
        kernel::After(400us, flood);
    };
    flood();
    harness.RunFor(20ms);
    harness.Post(WM_CLOSE);
    // A wait for a thread that does not end takes longer.
    static_assert(kThreadEndLimit > 15000);
    EXPECT_TRUE(harness.Until([&] { return harness.Ended(); }, 15s));
}

TEST(Closing, BeforeAnyPaintingMissesTheBackBuffer) {
    WizardHarness harness;
    harness.Start(SW_HIDE);
    harness.Close();
    const std::string refusal = "\tCMainFrame::~CMainFrame, Invalid Arguments!!!, MainFrm.cpp(#)";
    EXPECT_EQ(std::ranges::count(harness.TakeLog(), refusal), 2);
}

TEST(Suspend, IsRequestedFromTheHalAfterThePainting) {
    WizardHarness harness;
    harness.StartAt(5);
    harness.platform.board.on_hal_request = [&](std::span<const std::byte> input) {
        const auto text = harness.Find("Please make sure DVR Firmware is correct.");
        ASSERT_TRUE(text);
        // A picture of this screen is not kept: 33 letters, each 15 wide.
        EXPECT_NEAR(text->box.right - text->box.left, 33 * 15, 15);
        EXPECT_EQ(std::vector(input.begin(), input.end()),
                  (std::vector{std::byte{0x5A}, std::byte{0x5A}, std::byte{0}, std::byte{0}}));
    };
    harness.Post(WM_XCOMMAND, IDC_BTN_SUSPEND);
    harness.RunFor(100ms);
    EXPECT_EQ(harness.platform.board.power_options, std::vector<DWORD>{0x1000}) << "by force";
}

}  // namespace
}  // namespace tests
