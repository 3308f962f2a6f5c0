#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "platform/kernel/thread.h"
#include "platform/window/screen.h"
#include "tests/bench/wizard_bench.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

using Log = std::vector<std::string>;

constexpr POINT kOkFace = {630, 411};

void OpenNotice(WizardBench& bench, int step) {
    bench.GoTo(step);
    if (step == STEP_POWER_ON)
        bench.Tap("Power On");
    bench.RunFor(3100ms);
}

Log Touched(const char* handler, int x, int y, int times) {
    return Log(times, std::string("\tCNotify::") + handler + ", (x, y) = (" + std::to_string(x) +
                          ", " + std::to_string(y) + ")");
}

TEST(Notify, SaysWhatTheStepAsksFor) {
    struct Line {
        const char* text;
        int half_widths;
    };
    struct {
        int step;
        Line upper, lower;
        int width;
        bool centred;
    } const rows[] = {
        {-1,
         {"DVR用SDカード挿入口にSDカードが入っている場合、", 46},
         {"SDカードを抜いて下さい。", 23},
         16,
         false},
        {3, {"DVR用SDカード挿入口から", 23}, {"SDカードを抜いて下さい。", 23}, 22, true},
    };
    for (const auto& row : rows) {
        WizardBench bench;
        OpenNotice(bench, row.step);
        const std::string white = "W ";
        EXPECT_EQ(bench.Lines(), (Log{white + row.upper.text, white + row.lower.text, "W OK"}));
        EXPECT_EQ(bench.PixelAt(5, 475), 0U);
        EXPECT_EQ(bench.TakeLog("CNotify::"),
                  (Log{"\tCNotify::OnInitDialog",
                       "\tCNotify::OnPaint, nStep:" + std::to_string(row.step) + " "}));
        for (const auto& [line, middle] : {std::pair(row.upper, 190), std::pair(row.lower, 290)}) {
            const RECT box = bench.Find(line.text)->box;
            const int expected = line.half_widths * row.width;
            EXPECT_NEAR(box.right - box.left, expected, expected / 12.0);
            EXPECT_NEAR((box.top + box.bottom) / 2, middle, 8);
            if (row.centred) {
                EXPECT_NEAR((box.left + box.right) / 2, 400, row.width);
            } else {
                EXPECT_NEAR(box.left, 0, row.width);
            }
        }
    }
}

TEST(Notify, TakesPressesAndReleasesInItsWay) {
    WizardBench bench;
    OpenNotice(bench, -1);
    bench.Mark();
    // Two labels lie under this place; each takes one press.
    for (const int times : {1, 1, 2}) {
        bench.Press(100, 200);
        EXPECT_EQ(bench.TakeLog(), Touched("OnBtnDown", 100, 200, times));
    }
    // No label takes the release, and both tell of the click.
    bench.Release(100, 200);
    Log both = Touched("OnBtnUp", 100, 200, 2);
    both.insert(both.begin() + 1, 2, "\tCNotify::OnXCommand, wParam:0");
    EXPECT_EQ(bench.TakeLog(), both);

    // OK was added before the label that covers it.
    const std::uint32_t face = bench.PixelAt(kOkFace.x, kOkFace.y);
    bench.Press(700, 440);
    EXPECT_EQ(bench.TakeLog(), Touched("OnBtnDown", 700, 440, 1));
    EXPECT_NE(face, 0U);
    EXPECT_EQ(bench.PixelAt(kOkFace.x, kOkFace.y), 0U);
    EXPECT_TRUE(bench.Shows("OK"));
    bench.Release(400, 440);
    EXPECT_EQ(bench.TakeLog(), Touched("OnBtnUp", 400, 440, 2));
    EXPECT_EQ(bench.PixelAt(kOkFace.x, kOkFace.y), face);

    bench.Press(700, 440);
    bench.Mark();
    bench.Release(700, 440);
    Log closing = Touched("OnBtnUp", 700, 440, 1);
    for (const char* line : {"OnXCommand, wParam:1015", "OnXCommand, IDC_BTN_OK", "OnClose"})
        closing.push_back(std::string("\tCNotify::") + line);
    EXPECT_EQ(bench.TakeLog(), closing);
    EXPECT_EQ(bench.reset->Take(), Log{"0881 02"});
}

TEST(Notify, IsEndedFromElsewhereAsWell) {
    struct {
        UINT message;
        Log log;
    } const rows[] = {
        {WM_CLOSE, {"\tCNotify::OnClose"}},
        {WM_TIMER, {"\tCNotify::OnTimer", "\tCNotify::OnClose"}},
    };
    for (const auto& row : rows) {
        WizardBench bench;
        OpenNotice(bench, 3);
        bench.Mark();
        bench.Post(row.message, 1, 0, L"Dialog");
        // Whatever else is on its way finds no controls any more.
        for (const UINT late : {WM_CLOSE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_PAINT})
            bench.Post(late, 0, 0, L"Dialog");
        bench.RunFor(50ms);
        EXPECT_EQ(bench.Step(), 4);
        EXPECT_EQ(bench.Buttons(), "Next");
        EXPECT_EQ(bench.TakeLog("CNotify::"), row.log);
    }
}

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
    OpenNotice(bench, -1);
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

TEST(Notify, ThatCannotStartIsPassedOver) {
    WizardBench bench;
    bench.Start();
    bench.Hide(RT_DIALOG, 130);
    bench.Tap("Power On");
    EXPECT_EQ(bench.reset->Take(), Log{"0881 02"});
    EXPECT_EQ(bench.Buttons(), "Power On");
}

}  // namespace
}  // namespace tests
