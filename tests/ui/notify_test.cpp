#include <gtest/gtest.h>

#include <algorithm>

#include "platform/kernel/call_faults.h"
#include "tests/harness/wizard_harness.h"

namespace tests {
namespace {

// One call fails: the log line, with its fixed line number. The notice still covers the screen, and
// its button closes it.
TEST(Notify, LogsAFailureAndStaysUsable) {
    const struct {
        const char* call;
        std::wstring report;
    } rows[] = {
        {"LoadImageW", L"OnInitDialog, LoadImage() fail!!!, ErrorCode(1813), CNotify.cpp(45)"},
        {"CreateCompatibleDC", L"OnPaint, Invalid Arguments!!!, CNotify.cpp(138)"},
        {"CreateCompatibleBitmap", L"OnPaint, Invalid Arguments!!!, CNotify.cpp(140)"},
        {"GetSystemMetrics", L""},
        {"BeginPaint", L""},
        {"SelectObject", L""},
        {"BitBlt", L""},
        {"EndDialog", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        WizardHarness harness;
        harness.GoTo(3);
        ASSERT_EQ(platform::kernel::AddCallFault({.call = row.call, .error = 1813}), "");
        harness.RunFor(3100ms);
        ASSERT_TRUE(harness.Shows("OK"));
        EXPECT_TRUE(harness.Tap("OK"));
        harness.RunFor(300ms);
        EXPECT_EQ(platform::kernel::FailedCallCount(), 1U);
        EXPECT_FALSE(harness.Shows("OK"));
        EXPECT_EQ(harness.Step(), 4);
        EXPECT_EQ(std::ranges::count(harness.platform.board.lines(),
                                     L"[Tolvane.exe] \tCNotify::" + row.report),
                  row.report.empty() ? 0 : 1);
    }
}

TEST(Notify, IsSkippedWithoutItsTemplate) {
    WizardHarness harness;
    harness.Start();
    harness.Hide(RT_DIALOG, 130);
    harness.Tap("Power On");
    EXPECT_EQ(harness.reset->requests, std::vector<std::string>{"0881 02"});
    EXPECT_TRUE(harness.Shows("Power On"));
}

}  // namespace
}  // namespace tests
