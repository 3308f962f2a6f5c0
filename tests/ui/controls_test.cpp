#include <gtest/gtest.h>

#include <memory>

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/call_faults.h"
#include "tests/support/platform_test.h"
#include "ui/DrawButton.h"
#include "ui/DrawLabel.h"

// The comparison with the reference model covers the wizard's use of the controls.

namespace tests {
namespace {

constexpr COLORREF kFrameColors[] = {RGB(10, 0, 0), RGB(0, 20, 0), RGB(0, 0, 30)};
constexpr COLORREF kGrey = RGB(127, 127, 127);
constexpr COLORREF kUnder = RGB(1, 2, 3);
constexpr int kWidth = 40;
constexpr int kHeight = 20;
constexpr POINT kInside = {15, 15};
constexpr POINT kOutside = {50, 30};  // the first point beyond the right and bottom edges
constexpr RECT kPlace = {10, 10, 50, 30};

void Fill(HDC dc, const RECT& place, COLORREF color) {
    const GdiObject<HBRUSH> brush(CreateSolidBrush(color));
    FillRect(dc, &place, brush.Get());
}

std::vector<WPARAM> g_commands;

// An owner window of 100 x 60 that records commands.
class Owner {
  public:
    Owner() {
        WNDCLASSW settings{};
        settings.lpfnWndProc = [](HWND owner, UINT message, WPARAM wparam, LPARAM lparam) {
            if (message == WM_XCOMMAND)
                g_commands.push_back(wparam);
            return DefWindowProcW(owner, message, wparam, lparam);
        };
        settings.lpszClassName = L"Owner";
        RegisterClassW(&settings);
        window = CreateWindowExW(0, L"Owner", L"", WS_POPUP | WS_VISIBLE, 0, 0, 100, 60, nullptr,
                                 nullptr, nullptr, nullptr);
        dc = GetDC(window);
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() {
        ReleaseDC(window, dc);
        DestroyWindow(window);
        EXPECT_EQ(platform::gdi::DrawingObjectCount(), 0U) << "objects left";
    }

    void Clear() const {
        g_commands.clear();
        Fill(dc, {0, 0, 100, 60}, kUnder);
    }
    COLORREF At(int x, int y) const {
        const std::uint32_t pixel = platform::gdi::FindContext(dc)->surface->row(y)[x];
        return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
    }

    // Its strip has frames in the colours above.
    std::unique_ptr<CDrawButton> MakeButton(UINT id, UINT mode, int frames = 0) const {
        auto button =
            std::make_unique<CDrawButton>(window, id, 10, 10, kWidth, kHeight, mode, TRUE);
        if (frames == 0)
            return button;
        const HBITMAP strip = CreateCompatibleBitmap(dc, kWidth, kHeight * frames);
        button->SetImage(strip);
        const MemoryDC memory(dc);
        const SelectScope selected(memory.Get(), strip);
        for (int frame = 0; frame < frames; ++frame)
            Fill(memory.Get(), {0, frame * kHeight, kWidth, (frame + 1) * kHeight},
                 kFrameColors[frame]);
        return button;
    }

    HWND window;
    HDC dc;
};

// "d" and "u" press and release inside, "D" and "U" outside, "h" and "s" hide and show.
PLATFORM_TEST(Control, TakesPressesAndReleasesByItsMode) {
    constexpr UINT kLabel = 100;
    struct {
        UINT mode;
        int frames;
        const char* events;
        const char* taken;  // 1 for each event that was taken
        int frame;
        std::size_t commands;
    } const rows[] = {
        {BTN_MODE_PUSH, 2, "dd", "10", 1, 0},       {BTN_MODE_PUSH, 2, "dUu", "100", 0, 0},
        {BTN_MODE_PUSH, 2, "dhusd", "10000", 1, 0}, {BTN_MODE_PUSH, 2, "hd", "00", 0, 0},
        {BTN_MODE_LATCH, 2, "dud", "100", 1, 1},    {BTN_MODE_CYCLE, 3, "dud", "101", 2, 2},
        {BTN_MODE_CYCLE, 3, "ddd", "111", 0, 3},    {BTN_MODE_CYCLE, 0, "dd", "11", 0, 2},
        {BTN_MODE_TAP, 2, "dud", "101", 0, 2},      {4, 2, "du", "00", 0, 0},
        {kLabel, 0, "uddUdu", "010010", 0, 1},      {kLabel, 0, "hd", "00", 0, 0},
    };
    const Owner owner;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.mode) + row.events);
        std::unique_ptr<CDrawCtrl> control = owner.MakeButton(77, row.mode, row.frames);
        if (row.mode == kLabel)
            control =
                std::make_unique<CDrawLabel>(owner.window, 77, &kPlace, LBL_IMAGE | LBL_TEXT, TRUE);
        owner.Clear();
        std::string taken;
        for (const char event : std::string(row.events)) {
            const POINT at = event == 'D' || event == 'U' ? kOutside : kInside;
            BOOL answer = FALSE;
            if (event == 'd' || event == 'D')
                answer = control->OnBtnDown(at.x, at.y);
            else if (event == 'u' || event == 'U')
                answer = control->OnBtnUp(at.x, at.y);
            else
                control->SetVisible(event == 's');
            taken += answer ? '1' : '0';
        }
        EXPECT_EQ(taken, row.taken);
        EXPECT_EQ(g_commands, std::vector<WPARAM>(row.commands, 77));
        const bool visible = row.events[0] != 'h';
        EXPECT_FALSE(control->OnBtnMove(kInside.x, kInside.y));
        EXPECT_TRUE(control->Redraw());
        EXPECT_EQ(control->Draw(owner.dc, 30, 30), visible);
        const COLORREF face = row.frames > 0 ? kFrameColors[row.frame] : kGrey;
        EXPECT_EQ(owner.At(30, 30), visible ? face : kUnder);
        EXPECT_EQ(owner.At(69, 49), visible ? face : kUnder);
        EXPECT_EQ(owner.At(70, 50), kUnder);
    }
}

PLATFORM_TEST(Control, KeepsTextFontAndColourAndReturnsThem) {
    constexpr COLORREF kRed = RGB(255, 0, 0);
    const Owner owner;
    const std::unique_ptr<CDrawCtrl> controls[] = {
        std::make_unique<CDrawLabel>(owner.window, 0, &kPlace, LBL_TEXT, TRUE),
        owner.MakeButton(1, BTN_MODE_PUSH),
    };
    // Draws the control; which of three places from left to right the text covers. Smoothed text
    // mixes with the colour under it.
    const auto covered = [&](CDrawCtrl& control) {
        owner.Clear();
        EXPECT_TRUE(control.Draw(owner.dc, 10, 10));
        std::string places;
        for (const int x : {14, 30, 46}) {
            const COLORREF color = owner.At(x, 20);
            places += GetRValue(color) > 200 && GetGValue(color) < 50 ? '1' : '0';
        }
        return places;
    };
    for (const auto& control : controls) {
        EXPECT_EQ(control->SetTextColor(kRed), 0U);
        EXPECT_EQ(control->SetTextColor(kRed), kRed);
        EXPECT_TRUE(control->SetFont(L"Arial", 10, 18, 700, DEFAULT_CHARSET));
        EXPECT_FALSE(control->SetFont(nullptr, 0, 1, 700, DEFAULT_CHARSET));
        EXPECT_FALSE(control->SetFont(L"", 0, 1, 700, DEFAULT_CHARSET));
        kernel::AddCallFault({.call = "CreateFontIndirectW"});
        EXPECT_FALSE(control->SetFont(L"Arial", 0, 1, 700, DEFAULT_CHARSET));
        EXPECT_EQ(covered(*control), "000");
        EXPECT_EQ(control->SetText(L"█", DT_LEFT | DT_VCENTER | DT_WORDBREAK), 1);
        EXPECT_EQ(covered(*control), "100");
        EXPECT_EQ(control->SetText(nullptr, DT_CENTER | DT_VCENTER | DT_WORDBREAK), 0);
        EXPECT_EQ(covered(*control), "010");
        EXPECT_EQ(control->SetText(L"████", -1), 4) << "the format stays";
        EXPECT_EQ(covered(*control), "111");
        SetTextColor(owner.dc, RGB(9, 9, 9));
        const HGDIOBJ font = platform::gdi::FindContext(owner.dc)->font;
        EXPECT_EQ(control->SetText(L"█", 0), 1);
        EXPECT_EQ(covered(*control), "010");
        EXPECT_EQ(SetTextColor(owner.dc, 0), RGB(9, 9, 9));
        EXPECT_EQ(SetBkMode(owner.dc, OPAQUE), OPAQUE);
        EXPECT_EQ(platform::gdi::FindContext(owner.dc)->font, font);
        EXPECT_EQ(control->SetVisible(FALSE), TRUE);
        EXPECT_EQ(control->SetVisible(TRUE), FALSE);
    }
    const RECT corner{29, 0, 0, 0};
    EXPECT_FALSE(controls[0]->SetTextRect(&corner));
    EXPECT_TRUE(controls[1]->SetTextRect(&corner));
    EXPECT_EQ(covered(*controls[1]), "001");
}

PLATFORM_TEST(List, DrawsInOrderAndHoldsSixtyFour) {
    const Owner owner;
    CCtrlList list;
    EXPECT_FALSE(list.OnBtnDown(kInside.x, kInside.y));
    list.Add(nullptr);
    std::vector<std::unique_ptr<CDrawButton>> buttons;
    for (UINT id = 0; id < 65; ++id) {
        buttons.push_back(owner.MakeButton(id, BTN_MODE_LATCH, id < 63 ? 0 : 2));
        list.Add(buttons.back().get());
    }
    buttons[64]->OnBtnDown(kInside.x, kInside.y);
    EXPECT_TRUE(list.DrawAll(owner.dc));
    EXPECT_EQ(owner.At(kInside.x, kInside.y), kFrameColors[0]) << "of the 64th";
    for (int index = 0; index < 63; ++index)
        buttons[index]->SetVisible(FALSE);
    g_commands.clear();
    EXPECT_TRUE(list.OnBtnDown(kInside.x, kInside.y));
    EXPECT_FALSE(list.OnBtnDown(kInside.x, kInside.y));
    EXPECT_EQ(g_commands, std::vector<WPARAM>{63});
}

}  // namespace
}  // namespace tests
