#include <gtest/gtest.h>

#include <algorithm>

#include "platform/kernel/call_faults.h"
#include "tests/harness/wizard_harness.h"
#include "wizard/WizardModel.h"

// What the comparison with the model and the scenarios do not see of the wizard.

namespace tests {
namespace {

using Log = std::vector<std::string>;

// Lines of screens of which no picture is kept. A full-width character is twice the font's width,
// and another painting makes them no heavier.
TEST(Screens, GiveLinesTheirSize) {
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
    const struct {
        std::function<void(WizardHarness&)> act;
        const char* text;
        int half_widths;  // to the end of the ink
        int width, middle;
    } rows[] = {
        {offline, "本体に外部電源を接続して下さい。", 31, 13, 175},
        {no_image, "DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。", 52, 9, 145},
        {goes(5), "ファームウェアのアップデートに失敗しました。", 43, 15, 235},
        {goes(6), "Please make sure DVR Firmware is correct.", 33, 15, 235},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        WizardHarness harness;
        row.act(harness);
        const RECT box = harness.Find(row.text).value().box;
        EXPECT_NEAR(box.right - box.left, row.half_widths * row.width, row.width);
        EXPECT_NEAR((box.top + box.bottom) / 2.0, row.middle, 5);
        const platform::gdi::Surface painted_once = harness.Screen();
        harness.Post(WM_TIMER, 261);
        harness.RunFor(5ms);
        EXPECT_TRUE(std::ranges::equal(harness.Screen().pixels(), painted_once.pixels()));
    }
}

// One call fails while the program starts: the line that tells of it, or what is printed instead of
// the version, or nothing. The picture of the first painting may be missing, the next one is there.
TEST(Failures, AreToldAndPassedOver) {
    const struct {
        const char* call;
        std::string told;
    } rows[] = {
        {"GetFileVersionInfoSizeW", "Error in GetFileVersionInfoSize: 1234\n"},
        {"GetFileVersionInfoW", "Error in GetFileVersionInfo: 1234\n"},
        {"VerQueryValueW", "Error in VerQueryValue: 1234\n"},
        {"GetSystemPowerStatusEx2",
         "OnCreate, GetSystemPowerStatusEx2() fail!!!, ErrorCode(1234), MainFrm.cpp(#)"},
        {"RequestPowerNotifications",
         "OnCreate, g_pCPowerDetector->Init() fail!!!, ErrorCode(1234), MainFrm.cpp(#)"},
        {"CreateSolidBrush", "OnPaint, DeleteObject() fail!!!, ErrorCode(6), MainFrm.cpp(#)"},
        {"BeginPaint", ""},
        {"CreateCompatibleDC", ""},
        {"CreateCompatibleBitmap", ""},
        {"SelectObject", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        const bool prints = row.told.ends_with('\n');
        testing::internal::CaptureStdout();
        WizardHarness harness;
        EXPECT_EQ(platform::kernel::AddCallFault({.call = row.call, .error = 1234}), "");
        harness.Start();
        harness.Post(WM_TIMER, 261);
        harness.RunFor(5ms);
        EXPECT_EQ(platform::kernel::FailedCallCount(), 1U);
        EXPECT_TRUE(harness.Shows("Power On"));
        EXPECT_EQ(harness.Shows("Update Tool : V"), prints);
        harness.Close();
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  prints ? row.told : "File Version: 0.7.0.0\nProduct Version: 0.7.0.0\n");
        Log log = harness.TakeLog("\tCMainFrame::");
        std::erase_if(log, [](const std::string& line) { return line.find("!!!") == line.npos; });
        EXPECT_EQ(log, prints || row.told.empty() ? Log{} : Log{"\tCMainFrame::" + row.told});
    }
}

TEST(Closing, BeforeAnyPaintingMissesTheBackBuffer) {
    WizardHarness harness;
    harness.Start(SW_HIDE);
    harness.Close();
    EXPECT_EQ(harness.TakeLog("CMainFrame::~"),
              Log(2, "\tCMainFrame::~CMainFrame, Invalid Arguments!!!, MainFrm.cpp(#)"));
}

TEST(Suspend, IsAskedOfTheHalAfterThePainting) {
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
