#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "platform/kernel/call_faults.h"
#include "platform/kernel/thread.h"
#include "platform/window/screen.h"
#include "tests/bench/wizard_bench.h"

namespace tests {
namespace {

// A window of the unit's task bar, for a while.
void StartTaskBar(DWORD milliseconds) {
    platform::kernel::StartThread([milliseconds] {
        WNDCLASSW settings{};
        settings.lpfnWndProc = DefWindowProcW;
        settings.lpszClassName = L"HHTaskBar";
        RegisterClassW(&settings);
        const HWND bar = CreateWindowExW(WS_EX_TOPMOST, L"HHTaskBar", L"", WS_POPUP | WS_VISIBLE, 0,
                                         472, 800, 8, nullptr, nullptr, nullptr, nullptr);
        MSG message{};
        for (const DWORD end = GetTickCount() + milliseconds; GetTickCount() < end; Sleep(10))
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageW(&message);
        DestroyWindow(bar);
        return DWORD{0};
    });
}

TEST(Notify, CoversEverythingAndTheTaskBarStaysBehind) {
    WizardBench bench;
    StartTaskBar(15000);
    bench.GoTo(-1);
    bench.Tap("Power On");
    const auto state_of = [](std::wstring_view name) {
        const auto windows = platform::window::TopLevelWindows();
        return *std::ranges::find(windows, name, &platform::window::WindowState::class_name);
    };
    const auto top = platform::window::TopLevelWindows().front();
    EXPECT_EQ(top.class_name, L"Dialog");
    EXPECT_TRUE(top.topmost);
    EXPECT_TRUE(EqualRect(&top.rectangle, std::array{RECT{0, 0, 800, 480}}.data()));
    EXPECT_FALSE(state_of(L"HHTaskBar").topmost);
    EXPECT_FALSE(state_of(L"Tolvane").enabled);
    bench.Tap("OK");
    bench.RunFor(7s);
    EXPECT_FALSE(state_of(L"HHTaskBar").topmost);
    EXPECT_TRUE(state_of(L"Tolvane").enabled);
    EXPECT_EQ(platform::window::TopLevelWindows().front().class_name, L"Tolvane");
    bench.RunFor(10s);
}

// The lines name the places that the notice has always named.
TEST(Notify, LogsWhatFailsAndEndsAllTheSame) {
    const struct {
        const char* call;
        std::wstring line;
    } rows[] = {
        {"LoadImageW", L"OnInitDialog, LoadImage() fail!!!, ErrorCode(1813), CNotify.cpp(45)"},
        {"CreateCompatibleDC", L"OnPaint, Invalid Arguments!!!, CNotify.cpp(138)"},
        {"CreateCompatibleBitmap", L"OnPaint, Invalid Arguments!!!, CNotify.cpp(140)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        WizardBench bench;
        bench.GoTo(3);
        ASSERT_EQ(platform::kernel::AddCallFault({.call = row.call, .error = 1813}), "");
        bench.RunFor(3500ms);
        EXPECT_EQ(std::ranges::count(bench.platform.board.lines(),
                                     L"[Tolvane.exe] \tCNotify::" + row.line),
                  1);
        bench.Post(WM_CLOSE, 0, 0, L"Dialog");
        bench.RunFor(50ms);
        EXPECT_EQ(bench.Step(), 4);
    }
}

TEST(Notify, ThatCannotStartIsPassedOver) {
    WizardBench bench;
    bench.Start();
    bench.Hide(RT_DIALOG, 130);
    bench.Tap("Power On");
    EXPECT_EQ(bench.reset->requests, std::vector<std::string>{"0881 02"});
    EXPECT_TRUE(bench.Shows("Power On"));
}

}  // namespace
}  // namespace tests
