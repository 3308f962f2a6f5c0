#include <gtest/gtest.h>

#include "platform/kernel/call_faults.h"
#include "platform/window/screen.h"
#include "tests/harness/wizard_harness.h"

namespace tests {
namespace {

using platform::NamedKind;
using platform::window::TopLevelWindows;

constexpr wchar_t kName[] = L"Tolvane";

// The first copy is another process.
TEST(SecondCopy, BringsTheFirstForwardOrRuns) {
    const struct {
        std::chrono::milliseconds window_after;   // 0 at once, -1 never
        std::chrono::milliseconds ends_after;     // -1 never
        std::chrono::milliseconds decides_after;  // the second copy
        bool runs;
    } rows[] = {
        {0ms, -1ms, 0ms, false},        // the window is there
        {1050ms, -1ms, 1100ms, false},  // comes late
        {2350ms, -1ms, 2400ms, false},  // just in time
        {-1ms, -1ms, 2500ms, true},     // never comes
        {-1ms, 1050ms, 1100ms, true},   // the first copy ends
    };
    for (const auto& row : rows) {
        WizardHarness harness;
        OtherProcess& first = harness.platform.board.other_process;
        first.objects[kName] = NamedKind::kMutex;
        first.window_class = kName;
        if (row.window_after >= 0ms)
            harness.After(row.window_after, [&] { first.window = 0x51; });
        if (row.ends_after >= 0ms)
            harness.After(row.ends_after, [&] { first = {}; });
        harness.RunFor(1us);

        harness.Start();  // takes 20 ms itself
        harness.RunFor(row.decides_after - 40ms);
        EXPECT_EQ(TopLevelWindows().size(), 0U);
        EXPECT_EQ(harness.Ended(), row.decides_after == 0ms);
        harness.RunFor(60ms);
        EXPECT_EQ(harness.Ended(), !row.runs);
        EXPECT_EQ(first.brought_forward, row.runs ? 0 : 1);
        if (row.runs) {
            EXPECT_TRUE(harness.Shows("Power On"));
            harness.Close();
        } else {
            EXPECT_EQ(harness.TakeLog(), std::vector<std::string>());
            harness.ExpectExit(S_FALSE);
        }
        // Its own mutex only where the name was free.
        harness.platform.AllowHandles(row.ends_after >= 0ms ? 1 : 0);
    }
}

TEST(Start, EndsAtOnceWithoutTheNameTheMutexOrTheWindow) {
    const auto fails = [](const char* call) {
        return [call](WizardHarness&) { platform::kernel::AddCallFault({.call = call}); };
    };
    const struct {
        std::function<void(WizardHarness&)> prepare;
        DWORD exit;
    } rows[] = {
        {[](WizardHarness& harness) {
             harness.platform.board.other_process.objects[kName] = NamedKind::kMessageQueue;
         },
         0x80070057},
        {[](WizardHarness& harness) { harness.Hide(RT_STRING, 128 / 16 + 1); }, 0x80004005},
        {fails("CreateMutexW"), 0x80004005},
        {fails("CreateWindowExW"), 0},
    };
    for (const auto& row : rows) {
        WizardHarness harness;
        row.prepare(harness);
        harness.Start();
        harness.ExpectExit(static_cast<int>(row.exit));
        EXPECT_TRUE(harness.frames.empty());
        harness.platform.AllowHandles(row.exit == 0 ? 1 : 0);
        if (row.exit != 0) {
            EXPECT_EQ(harness.TakeLog(), std::vector<std::string>());
        }
    }
}

TEST(Start, CreatesOneWindowAndEndsWithTheQuitCode) {
    WizardHarness harness;
    harness.Start();
    const auto windows = TopLevelWindows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows[0].class_name, kName);
    EXPECT_EQ(windows[0].title, kName);
    const RECT screen{0, 0, 800, 480};
    EXPECT_TRUE(EqualRect(&windows[0].rectangle, &screen));

    EXPECT_EQ(windows[0].style, DWORD{WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_VISIBLE});
    EXPECT_EQ(windows[0].extended_style, 0U);
    WNDCLASSW info{};
    ASSERT_TRUE(GetClassInfoW(nullptr, kName, &info));
    EXPECT_EQ(info.style, 0U);
    EXPECT_EQ(info.hbrBackground, reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1}));
    EXPECT_NE(info.hIcon, nullptr);

    harness.Post(WM_QUIT, 7);
    harness.ExpectExit(7);
    harness.platform.AllowHandles(1);
    EXPECT_EQ(TopLevelWindows().size(), 0U);
}

}  // namespace
}  // namespace tests
