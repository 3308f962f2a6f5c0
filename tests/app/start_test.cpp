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
    constexpr auto kNever = 1000s;
    const struct {
        std::chrono::milliseconds window_after, end_after;  // of the first copy
        std::chrono::milliseconds decides_after;            // the second copy
        bool runs;
    } rows[] = {
        {0ms, kNever, 0ms, false},        // the window is there
        {1050ms, kNever, 1100ms, false},  // comes late
        {2250ms, kNever, 2300ms, false},  // just in time for the last attempt
        {kNever, kNever, 2500ms, true},   // never comes
        {kNever, 1050ms, 1100ms, true},   // the first copy ends
    };
    for (const auto& row : rows) {
        WizardHarness harness;
        OtherProcess& first = harness.platform.board.other_process;
        first.objects[kName] = NamedKind::kMutex;
        first.window_class = kName;
        platform::kernel::After(row.window_after, [&] { first.window = 0x51; });
        platform::kernel::After(row.end_after, [&] { first = {}; });
        harness.RunFor(1us);

        // The attempt after this one follows at once.
        platform::kernel::AddCallFault({.call = "SetForegroundWindow"});
        harness.Start();  // takes 20 ms itself
        harness.RunFor(row.decides_after - 40ms);
        EXPECT_EQ(TopLevelWindows().size(), 0U);
        EXPECT_EQ(harness.Ended(), row.decides_after == 0ms);
        harness.RunFor(60ms);
        EXPECT_EQ(harness.Ended(), !row.runs);
        EXPECT_EQ(first.brought_forward, row.runs ? 0 : 1);
        EXPECT_EQ(harness.Shows("Power On"), row.runs);
        if (!row.runs) {
            EXPECT_EQ(harness.TakeLog(), std::vector<std::string>());
            harness.ExpectExit(S_FALSE);
        }
        // Its own mutex only where the name was free.
        harness.platform.AllowHandles(row.end_after == kNever ? 0 : 1);
    }
}

TEST(Start, EndsAtOnceWithoutTheNameTheMutexOrTheWindow) {
    // A call that fails, its error, and the exit code.
    const std::tuple<std::string, DWORD, DWORD> rows[] = {
        {"LoadStringW", ERROR_RESOURCE_NAME_NOT_FOUND, 0x80004005},
        {"CreateMutexW", ERROR_ACCESS_DENIED, 0x80004005},
        {"CreateMutexW", ERROR_INVALID_HANDLE, 0x80070057},  // of another kind of object
        {"CreateWindowExW", ERROR_OUTOFMEMORY, 0},
    };
    for (const auto& [failing, error, exit] : rows) {
        SCOPED_TRACE(failing);
        const bool has_name = failing == "CreateWindowExW";
        WizardHarness harness;
        EXPECT_EQ(platform::kernel::AddCallFault({.call = failing, .error = error}), "");
        harness.Start();
        harness.ExpectExit(static_cast<int>(exit));
        EXPECT_TRUE(harness.frames.empty());
        EXPECT_EQ(harness.TakeLog().empty(), !has_name);
        harness.platform.AllowHandles(has_name ? 1 : 0);  // the mutex
    }
}

TEST(Start, CreatesOneWindowAndEndsWithTheQuitCode) {
    WizardHarness harness;
    harness.Start();
    const auto windows = TopLevelWindows();
    ASSERT_EQ(windows.size(), 1U);
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
