#include <gtest/gtest.h>

#include "platform/kernel/thread.h"
#include "platform/window/screen.h"
#include "tests/bench/wizard_bench.h"

namespace tests {
namespace {

using platform::window::TopLevelWindows;

constexpr wchar_t kName[] = L"Tolvane";

HWND ShowWindowOf(const wchar_t* name, const wchar_t* title, HWND owner = nullptr) {
    WNDCLASSW settings{};
    settings.lpfnWndProc = DefWindowProcW;
    settings.lpszClassName = name;
    RegisterClassW(&settings);
    return CreateWindowExW(0, name, title, WS_POPUP | WS_VISIBLE, 0, 0, 800, 480, owner, nullptr,
                           nullptr, nullptr);
}

// What another program of the unit has under the program's name, and when.
struct Holder {
    std::chrono::milliseconds window_after = -1ms;
    std::chrono::milliseconds ends_after = -1ms;
};

constexpr std::chrono::milliseconds kAlways = 60s;

void Hold(const Holder& holder) {
    platform::kernel::StartThread([holder] {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
        HWND window = nullptr;
        if (holder.window_after >= 0ms) {
            Sleep(static_cast<DWORD>(holder.window_after.count()));
            window = ShowWindowOf(kName, L"the first copy");
            ShowWindowOf(L"Notice", L"its notice", window);
        }
        // Its window stands and its thread looks after it.
        MSG message{};
        const DWORD end = GetTickCount() + static_cast<DWORD>(holder.ends_after.count());
        while (GetTickCount() < end) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageW(&message);
            Sleep(10);
        }
        if (window != nullptr)
            DestroyWindow(window);
        CloseHandle(mutex);
        return DWORD{0};
    });
}

// Something that stands before the first copy's window.
void Cover() {
    platform::kernel::StartThread([] {
        const HWND cover = ShowWindowOf(L"Cover", L"cover");
        SetForegroundWindow(cover);
        Sleep(5000);
        DestroyWindow(cover);
        return DWORD{0};
    });
}

TEST(SecondStart, BringsTheFirstCopyToTheFront) {
    for (const auto window_after : {0ms, 1050ms, 2350ms}) {
        WizardBench bench;
        Hold({window_after, 6s});
        bench.RunFor(5ms);
        if (window_after == 0ms)
            Cover();
        bench.RunFor(5ms);
        if (window_after == 0ms) {
            ASSERT_EQ(TopLevelWindows().front().title, L"cover");
        }
        bench.Start();
        bench.RunFor(window_after);
        bench.RunFor(80ms);
        EXPECT_TRUE(bench.Ended()) << "it looks every 100 ms";
        bench.ExpectExit(S_FALSE);
        const auto windows = TopLevelWindows();
        ASSERT_EQ(windows.size(), window_after == 0ms ? 3U : 2U);
        EXPECT_EQ(windows[0].title, L"its notice");
        EXPECT_EQ(windows[1].title, L"the first copy");
        EXPECT_EQ(bench.TakeLog(), std::vector<std::string>());
        bench.RunFor(7s);
    }
}

TEST(SecondStart, RunsWhenNoCopyShowsItself) {
    struct {
        Holder holder;
        std::chrono::milliseconds starts;
    } const rows[] = {
        {{-1ms, kAlways}, 2500ms},  // never has a window
        {{-1ms, 1050ms}, 1100ms},   // ends
    };
    for (const auto& row : rows) {
        WizardBench bench;
        Hold(row.holder);
        bench.RunFor(5ms);
        bench.Start();
        bench.RunFor(row.starts - 50ms);
        EXPECT_EQ(TopLevelWindows().size(), 0U);
        bench.RunFor(60ms);
        ASSERT_EQ(TopLevelWindows().size(), 1U);
        EXPECT_EQ(bench.Buttons(), "Power On");
        bench.Close();
        // After 25 attempts it runs without a mutex of its own.
        bench.platform.AllowHandles(row.starts == 2500ms ? 0 : 1);
        bench.RunFor(kAlways);
    }
}

TEST(Start, EndsWithItsErrorBeforeAnythingElse) {
    for (const bool name_is_taken : {true, false}) {
        WizardBench bench;
        const HANDLE held = name_is_taken ? CreateEventW(nullptr, FALSE, FALSE, kName) : HANDLE{};
        if (!name_is_taken)
            bench.Hide(RT_STRING, 128 / 16 + 1);
        bench.Start();
        bench.ExpectExit(static_cast<int>(name_is_taken ? 0x80070057 : 0x80004005));
        EXPECT_EQ(bench.TakeFrames(), "");
        EXPECT_EQ(bench.TakeLog(), std::vector<std::string>());
        CloseHandle(held);
    }
}

TEST(Start, MakesTheOneWindowAndEndsWithTheQuitCode) {
    WizardBench bench;
    bench.Start();
    const auto windows = TopLevelWindows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows[0].class_name, kName);
    EXPECT_EQ(windows[0].title, kName);
    const RECT screen{0, 0, 800, 480};
    EXPECT_TRUE(EqualRect(&windows[0].rectangle, &screen));

    const HWND window = FindWindowW(kName, nullptr);
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)),
              DWORD{WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_VISIBLE});
    EXPECT_EQ(GetWindowLongW(window, GWL_EXSTYLE), 0);
    WNDCLASSW info{};
    ASSERT_TRUE(GetClassInfoW(nullptr, kName, &info));
    EXPECT_EQ(info.style, 0U);
    EXPECT_EQ(info.hbrBackground, reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1}));
    EXPECT_NE(info.hIcon, nullptr);

    bench.Post(WM_QUIT, 7);
    bench.ExpectExit(7);
    bench.platform.AllowHandles(1);
    EXPECT_EQ(TopLevelWindows().size(), 0U);
}

}  // namespace
}  // namespace tests
