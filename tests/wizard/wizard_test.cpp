#include <gtest/gtest.h>

#include <algorithm>
#include <new>

#include "platform/kernel/call_faults.h"
#include "tests/harness/wizard_harness.h"
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

using Log = std::vector<std::string>;
namespace kernel = platform::kernel;

// The size and place of the lines of screens of which no picture is kept. A full-width character is
// twice the font's width. A second painting makes no line heavier.
TEST(Screens, GiveLinesTheirSizeAndPlace) {
    struct Line {
        const char* text;
        int half_widths;  // to the end of the ink
        int width, middle;
    };
    const auto goes = [](int step) {
        return [step](WizardHarness& harness) { harness.GoTo(step); };
    };
    const auto offline = [](WizardHarness& harness) {
        harness.GoTo(0);
        harness.SetAcLine(0);
    };
    const auto no_image = [](WizardHarness& harness) {
        harness.GoTo(1);
        harness.Command(IDC_BTN_UPDATE);
        harness.RunFor(4100ms);
    };
    const auto second_notice = [](WizardHarness& harness) {
        harness.GoTo(3);
        harness.RunFor(3100ms);
    };
    const struct {
        std::function<void(WizardHarness&)> act;
        std::vector<Line> lines;
    } screens[] = {
        {goes(0),
         {{"3.“Next” ボタンを押下して下さい。", 29, 12, 175},
          {" DVR用SDカード挿入口にSDカードが入っている場合、", 47, 9, 235},
          {" Nextボタンは表示されません。", 26, 9, 295}}},
        {goes(1),
         {{"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", 45, 9, 175},
          {"5. DVR用SDカード挿入口にSDカードを入れて下さい。", 47, 9, 235},
          {"      \"Update\" ボタンを押下して下さい。", 30, 9, 355}}},
        {offline, {{"本体に外部電源を接続して下さい。", 31, 13, 175}}},
        {no_image, {{"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。", 52, 9, 145}}},
        {goes(3), {{"6. しばらくお待ち下さい。", 23, 9, 235}}},
        {second_notice,
         {{"DVR用SDカード挿入口から", 24, 22, 190}, {"SDカードを抜いて下さい。", 23, 22, 290}}},
        {goes(4),
         {{"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", 50, 13, 235},
          {"      \"Next\" ボタンを押下して下さい。", 28, 9, 355}}},
        {goes(5), {{"ファームウェアのアップデートに失敗しました。", 43, 15, 235}}},
        {goes(6), {{"Please make sure DVR Firmware is correct.", 33, 15, 235}}},
    };
    for (const auto& [act, lines] : screens) {
        WizardHarness harness;
        act(harness);
        const platform::gdi::Surface painted_once = harness.Screen();
        for (const Line& line : lines) {
            const auto found = harness.Find(line.text);
            ASSERT_TRUE(found) << line.text;
            const RECT box = found->box;
            EXPECT_NEAR(box.right - box.left, line.half_widths * line.width, line.width)
                << line.text;
            EXPECT_NEAR((box.top + box.bottom) / 2.0, line.middle, 5) << line.text;
        }
        harness.Post(WM_TIMER, TIMER_REPAINT);
        harness.RunFor(5ms);
        EXPECT_TRUE(std::ranges::equal(harness.Screen().pixels(), painted_once.pixels()));
    }
}

// One call fails while the program starts: the log line, or the line that is printed instead of the
// version. The window comes up, and a stray message is not taken for the unit's broadcast.
TEST(Failures, AreLoggedAndPassedOver) {
    const struct {
        const char* call;
        std::string report;
    } rows[] = {
        {"GetFileVersionInfoSizeW", "Error in GetFileVersionInfoSize: 1234\n"},
        {"GetFileVersionInfoW", "Error in GetFileVersionInfo: 1234\n"},
        {"VerQueryValueW", "Error in VerQueryValue: 1234\n"},
        {"RegisterWindowMessageW", "CMainFrame, RegisterWindowMessage() fail!!!, ErrorCode(1234)"},
        {"GetSystemPowerStatusEx2", "OnCreate, GetSystemPowerStatusEx2() fail!!!, ErrorCode(1234)"},
        {"RequestPowerNotifications",
         "OnCreate, g_pCPowerDetector->Init() fail!!!, ErrorCode(1234)"},
        {"SetTimer", "OnCreate, SetTimer() fail!!!, ErrorCode(1234)"},
        {"CreateSolidBrush", "OnPaint, DeleteObject() fail!!!, ErrorCode(6)"},
        {"BeginPaint", ""},
        {"CreateCompatibleDC", ""},
        {"CreateCompatibleBitmap", ""},
        {"SelectObject", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        const bool prints = row.report.ends_with('\n');
        testing::internal::CaptureStdout();
        WizardHarness harness;
        EXPECT_EQ(kernel::AddCallFault({.call = row.call, .error = 1234}), "");
        harness.Start();
        harness.Post(WM_NULL);
        harness.Post(WM_TIMER, TIMER_REPAINT);
        harness.RunFor(5ms);
        EXPECT_EQ(kernel::FailedCallCount(), 1U);
        EXPECT_TRUE(harness.Shows("Power On"));
        EXPECT_EQ(harness.Shows("Update Tool : V"), prints);
        harness.Close();
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  prints ? row.report : "File Version: 0.7.0.0\nProduct Version: 0.7.0.0\n");
        Log log = harness.TakeLog("\tCMainFrame::");
        std::erase_if(log, [](const std::string& line) { return line.find("!!!") == line.npos; });
        EXPECT_EQ(log, prints || row.report.empty()
                           ? Log{}
                           : Log{"\tCMainFrame::" + row.report + ", MainFrm.cpp(#)"});
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
        harness.Tap("Power On");
        harness.Tap("OK");
        harness.Percent(5);
        harness.RunFor(10s);
        harness.Close();
        failed = std::exchange(g_failing_allocation, 0) == 0;
    }
}

// Painting step 3 arms the timer of its end again until it is armed.
TEST(Failures, OfTheTimerThatEndsStep3DelayIt) {
    WizardHarness harness;
    harness.GoTo(2);
    EXPECT_EQ(kernel::AddCallFault({.call = "SetTimer", .times = 3, .error = 1234}), "");
    harness.Percent(100);
    harness.RunFor(3200ms);
    EXPECT_FALSE(harness.Shows("OK"));
    EXPECT_EQ(harness.TakeLog("SetTimer"),
              Log(3, "\tCMainFrame::OnPaint, SetTimer() fail!!!, ErrorCode(1234), MainFrm.cpp(#)"));
    harness.RunFor(200ms);
    EXPECT_TRUE(harness.Shows("OK"));
}

// The DVR's report that ends step 4 comes while the power returns, with a switch of threads between
// any two calls.
TEST(Restart, StandsAgainstTheReportOfTheRestartedDvr) {
    WizardHarness harness({.seed = 1, .preempt = true}, WizardHarness::Pace::kAtOnce);
    harness.Start();
    for (int round = 0; round < 300; ++round) {
        harness.SetAcLine(0);
        g_pMainFrame.load()->m_nStep = STEP_REMOVE_CARD;
        harness.Running(2);
        harness.SetAcLine(1);
        ASSERT_EQ(harness.Step(), STEP_POWER_ON) << round;
        ASSERT_TRUE(harness.Shows("Power On")) << round;
    }
}

// A window that is not painted keeps what painting would clear.
TEST(Restart, ForgetsTheVersionOfTheDvr) {
    WizardHarness harness;
    harness.Start(SW_HIDE);
    harness.Version("14.09.01.V1.02.03");
    harness.SetAcLine(0);
    ASSERT_NE(g_pMainFrame.load()->m_szDvrVersion.Load(), CVersionText::Characters{});
    harness.SetAcLine(1);
    EXPECT_EQ(g_pMainFrame.load()->m_szDvrVersion.Load(), CVersionText::Characters{});
}

TEST(Closing, BeforeAnyPaintingMissesTheBackBuffer) {
    WizardHarness harness;
    harness.Start(SW_HIDE);
    harness.Close();
    EXPECT_EQ(harness.TakeLog("CMainFrame::~"),
              Log(2, "\tCMainFrame::~CMainFrame, Invalid Arguments!!!, MainFrm.cpp(#)"));
}

TEST(Suspend, IsRequestedFromTheHalAfterThePainting) {
    WizardHarness harness;
    harness.GoTo(5);
    harness.platform.board.on_hal_request = [&](std::span<const std::byte> input) {
        EXPECT_TRUE(harness.Shows("Please make sure DVR Firmware is correct."));
        EXPECT_EQ(std::vector(input.begin(), input.end()),
                  (std::vector{std::byte{0x5A}, std::byte{0x5A}, std::byte{0}, std::byte{0}}));
    };
    harness.Command(IDC_BTN_SUSPEND);
    harness.RunFor(100ms);
    EXPECT_EQ(harness.platform.board.power_options, std::vector<DWORD>{0x1000}) << "by force";
}

}  // namespace
}  // namespace tests
