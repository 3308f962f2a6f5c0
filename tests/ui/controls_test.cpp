#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "platform/gdi/device_context.h"
#include "tests/support/platform_fixture.h"
#include "ui/CtrlList.h"
#include "ui/DrawButton.h"
#include "ui/DrawLabel.h"

namespace tests {
namespace {

constexpr COLORREF kFrameColors[] = {RGB(10, 0, 0), RGB(0, 20, 0), RGB(0, 0, 30)};
constexpr COLORREF kGrey = RGB(127, 127, 127);
constexpr COLORREF kUnder = RGB(1, 2, 3);
constexpr int kWidth = 40;
constexpr int kHeight = 20;
constexpr POINT kInside = {15, 15};
constexpr POINT kOutside = {50, 30};  // the first point beyond the right and bottom edges

// An owner window that notes commands, and a canvas of 100 x 60 to draw on.
class Owner {
  public:
    Owner() {
        WNDCLASSW settings{};
        settings.lpfnWndProc = Procedure;
        settings.lpszClassName = L"Owner";
        RegisterClassW(&settings);
        window_ = CreateWindowExW(0, L"Owner", L"", WS_POPUP | WS_VISIBLE, 0, 0, 100, 60, nullptr,
                                  nullptr, nullptr, nullptr);
        commands.clear();
        const HDC screen = GetDC(window_);
        dc_ = CreateCompatibleDC(screen);
        bitmap_ = CreateCompatibleBitmap(screen, 100, 60);
        ReleaseDC(window_, screen);
        previous_ = SelectObject(dc_, bitmap_);
        Clear();
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() {
        SelectObject(dc_, previous_);
        DeleteObject(bitmap_);
        DeleteDC(dc_);
        DestroyWindow(window_);
        EXPECT_EQ(platform::gdi::DrawingObjectCount(), 0U) << "objects left";
    }

    HWND window() const { return window_; }
    HDC dc() const { return dc_; }

    void Clear() { Fill(dc_, {0, 0, 100, 60}, kUnder); }
    COLORREF At(int x, int y) const { return GetPixel(dc_, x, y); }
    COLORREF OnWindow(int x, int y) const {
        const HDC screen = GetDC(window_);
        const COLORREF color = GetPixel(screen, x, y);
        ReleaseDC(window_, screen);
        return color;
    }
    // Whether any pixel of the canvas has the colour.
    bool Shows(COLORREF color) const {
        for (int index = 0; index < 100 * 60; ++index)
            if (At(index % 100, index / 100) == color)
                return true;
        return false;
    }

    // A strip of frames in the colours above.
    HBITMAP Strip(int frames) const {
        const HDC strip_dc = CreateCompatibleDC(dc_);
        const HBITMAP strip = CreateCompatibleBitmap(dc_, kWidth, kHeight * frames);
        const HGDIOBJ previous = SelectObject(strip_dc, strip);
        for (int frame = 0; frame < frames; ++frame)
            Fill(strip_dc, {0, frame * kHeight, kWidth, (frame + 1) * kHeight},
                 kFrameColors[frame]);
        SelectObject(strip_dc, previous);
        DeleteDC(strip_dc);
        return strip;
    }

    static inline std::vector<WPARAM> commands;

  private:
    static void Fill(HDC dc, const RECT& place, COLORREF color) {
        const HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc, &place, brush);
        DeleteObject(brush);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == 2024) {
            commands.push_back(wparam);
            return 0;
        }
        return DefWindowProcW(window, message, wparam, lparam);
    }

    HWND window_;
    HDC dc_;
    HBITMAP bitmap_;
    HGDIOBJ previous_;
};

void OnPlatform(const std::function<void(Owner&)>& body) {
    Platform platform;
    platform.Run([&] {
        Owner owner;
        body(owner);
    });
}

std::unique_ptr<CDrawButton> MakeButton(const Owner& owner, UINT id, UINT mode, int frames = 0) {
    auto button =
        std::make_unique<CDrawButton>(owner.window(), id, 10, 10, kWidth, kHeight, mode, TRUE);
    if (frames > 0)
        button->SetImage(owner.Strip(frames));
    return button;
}

// "d" and "u" press and release inside, "D" and "U" outside, "h" and "s" hide and show.
TEST(Button, WorksByItsMode) {
    struct {
        UINT mode;
        int frames;
        const char* events;
        const char* taken;  // 1 for each event that was
        int frame;
        std::size_t commands;
    } const rows[] = {
        {BTN_MODE_PUSH, 2, "D", "0", 0, 0},
        {BTN_MODE_PUSH, 2, "d", "1", 1, 0},
        {BTN_MODE_PUSH, 2, "dd", "10", 1, 0},
        {BTN_MODE_PUSH, 2, "du", "11", 0, 1},
        {BTN_MODE_PUSH, 2, "dUu", "100", 0, 0},
        {BTN_MODE_PUSH, 2, "u", "0", 0, 0},
        {BTN_MODE_PUSH, 2, "dhusd", "10000", 1, 0},
        {BTN_MODE_PUSH, 2, "dhusu", "10001", 0, 1},
        {BTN_MODE_PUSH, 2, "hd", "00", 0, 0},
        {BTN_MODE_LATCH, 2, "dud", "100", 1, 1},
        {BTN_MODE_CYCLE, 3, "dud", "101", 2, 2},
        {BTN_MODE_CYCLE, 3, "ddd", "111", 0, 3},
        {BTN_MODE_CYCLE, 0, "dd", "11", 0, 2},
        {BTN_MODE_TAP, 2, "dud", "101", 0, 2},
        {4, 2, "du", "00", 0, 0},
    };
    OnPlatform([&](Owner& owner) {
        for (const auto& row : rows) {
            SCOPED_TRACE(std::to_string(row.mode) + row.events);
            const auto button = MakeButton(owner, 77, row.mode, row.frames);
            Owner::commands.clear();
            std::string taken;
            for (const char event : std::string(row.events)) {
                const POINT at = event == 'D' || event == 'U' ? kOutside : kInside;
                BOOL answer = FALSE;
                if (event == 'd' || event == 'D')
                    answer = button->OnBtnDown(at.x, at.y);
                else if (event == 'u' || event == 'U')
                    answer = button->OnBtnUp(at.x, at.y);
                else
                    button->SetVisible(event == 's');
                taken += answer ? '1' : '0';
            }
            EXPECT_EQ(taken, row.taken);
            EXPECT_EQ(Owner::commands, std::vector<WPARAM>(row.commands, 77));
            owner.Clear();
            const bool visible = row.events[0] != 'h';
            EXPECT_EQ(button->Draw(owner.dc(), 30, 30), visible);
            const COLORREF face = row.frames > 0 ? kFrameColors[row.frame] : kGrey;
            EXPECT_EQ(owner.At(30, 30), visible ? face : kUnder);
            EXPECT_EQ(owner.At(69, 49), visible ? face : kUnder);
            EXPECT_EQ(owner.At(70, 49), kUnder);
            EXPECT_EQ(owner.At(69, 50), kUnder);
            if (taken.back() == '1' && row.mode != BTN_MODE_TAP) {
                EXPECT_EQ(owner.OnWindow(10, 10), face) << "shown at once";
            }
        }
    });
}

// Both kinds of control, with a text in a colour and one without.
TEST(Control, TextFontAndColourAreKeptAndAnswered) {
    OnPlatform([](Owner& owner) {
        const RECT place{10, 10, 50, 30};
        const std::unique_ptr<CDrawCtrl> controls[] = {
            std::make_unique<CDrawLabel>(owner.window(), 0, &place, LBL_TEXT, TRUE),
            MakeButton(owner, 1, BTN_MODE_PUSH),
        };
        constexpr COLORREF kRed = RGB(255, 0, 0);
        for (const auto& control : controls) {
            EXPECT_EQ(control->SetTextColor(kRed), 0U);
            EXPECT_EQ(control->SetTextColor(kRed), kRed);
            EXPECT_TRUE(control->SetFont(L"Arial", 0, 18, 700, DEFAULT_CHARSET));
            EXPECT_FALSE(control->SetFont(nullptr, 0, 60, 700, DEFAULT_CHARSET));
            EXPECT_FALSE(control->SetFont(L"", 0, 60, 700, DEFAULT_CHARSET));
            EXPECT_EQ(control->SetText(nullptr, 21), 0);
            struct {
                const wchar_t* text;
                int format;
                int answer;
                bool shows;
            } const rows[] = {{L"", 21, 0, false},
                              {L"██", 20, 2, true},
                              {nullptr, 21, 0, true},
                              {L"", 0, 0, false},
                              {L"█", -1, 1, true}};
            for (const auto& row : rows) {
                EXPECT_EQ(control->SetText(row.text, row.format), row.answer);
                owner.Clear();
                SetTextColor(owner.dc(), RGB(9, 9, 9));
                SetBkMode(owner.dc(), OPAQUE);
                const HGDIOBJ font = GetCurrentObject(owner.dc(), OBJ_FONT);
                EXPECT_TRUE(control->Draw(owner.dc(), 10, 10));
                EXPECT_EQ(owner.Shows(kRed), row.shows);
                EXPECT_EQ(SetTextColor(owner.dc(), 0), RGB(9, 9, 9));
                EXPECT_EQ(SetBkMode(owner.dc(), OPAQUE), OPAQUE);
                EXPECT_EQ(GetCurrentObject(owner.dc(), OBJ_FONT), font);
            }
            RECT answered{};
            EXPECT_EQ(control->GetRect(&answered), &answered);
            EXPECT_TRUE(EqualRect(&answered, &place));
            EXPECT_EQ(control->OnBtnMove(15, 15), FALSE);
            EXPECT_EQ(control->SetVisible(FALSE), TRUE);
            EXPECT_EQ(control->SetVisible(TRUE), FALSE);
        }
        EXPECT_FALSE(controls[0]->SetTextRect(&place));
        EXPECT_TRUE(controls[1]->SetTextRect(nullptr));
        // The button's text moves into the rectangle's lower right.
        const RECT corner{20, 10, 0, 0};
        EXPECT_TRUE(controls[1]->SetTextRect(&corner));
        controls[1]->SetText(L"████", 32);
        owner.Clear();
        controls[1]->Draw(owner.dc(), 10, 10);
        EXPECT_EQ(owner.At(29, 25), kGrey);
        EXPECT_EQ(owner.At(40, 25), kRed);
    });
}

TEST(Label, TakesPressesButNeverReleases) {
    OnPlatform([](Owner& owner) {
        const RECT place{10, 10, 50, 30};
        CDrawLabel label(owner.window(), 5, &place, LBL_IMAGE | LBL_TEXT, TRUE);
        EXPECT_FALSE(label.OnBtnUp(15, 15));
        EXPECT_TRUE(label.OnBtnDown(10, 10));
        EXPECT_FALSE(label.OnBtnDown(15, 15)) << "pressed already";
        EXPECT_FALSE(label.OnBtnUp(50, 30));
        EXPECT_TRUE(Owner::commands.empty());
        EXPECT_TRUE(label.OnBtnDown(49, 29));
        EXPECT_FALSE(label.OnBtnUp(15, 15));
        EXPECT_EQ(Owner::commands, std::vector<WPARAM>{5});
        label.Draw(owner.dc(), 10, 10);
        EXPECT_EQ(owner.At(10, 10), kGrey) << "no picture";
        label.SetVisible(FALSE);
        EXPECT_FALSE(label.OnBtnDown(15, 15));
        EXPECT_FALSE(label.Draw(owner.dc(), 60, 10));
        EXPECT_EQ(owner.At(60, 10), kUnder);
    });
}

TEST(List, OffersInOrderDrawsInOrderAndHoldsSixtyFour) {
    OnPlatform([](Owner& owner) {
        CCtrlList empty;
        EXPECT_FALSE(empty.OnBtnDown(15, 15));
        EXPECT_TRUE(empty.DrawAll(owner.dc()));

        CCtrlList list;
        std::vector<std::unique_ptr<CDrawButton>> buttons;
        const auto add = [&](UINT id, UINT mode, int frames) {
            buttons.push_back(MakeButton(owner, id, mode, frames));
            list.Add(buttons.back().get());
        };
        add(100, BTN_MODE_PUSH, 2);
        list.Add(nullptr);
        for (UINT id = 101; id < 163; ++id)
            add(id, BTN_MODE_TAP, 0);
        add(163, BTN_MODE_LATCH, 1);  // the 64th, on top
        add(164, BTN_MODE_LATCH, 2);  // one too many
        buttons[64]->OnBtnDown(15, 15);
        EXPECT_TRUE(list.DrawAll(owner.dc()));
        EXPECT_EQ(owner.At(15, 15), kFrameColors[0]) << "of the 64th";

        Owner::commands.clear();
        EXPECT_TRUE(list.OnBtnDown(15, 15));
        EXPECT_TRUE(Owner::commands.empty()) << "the push button takes it";
        EXPECT_TRUE(list.OnBtnDown(15, 15));
        EXPECT_EQ(Owner::commands, std::vector<WPARAM>{101}) << "pressed, it passes it on";
        EXPECT_TRUE(list.OnBtnUp(15, 15));
        EXPECT_FALSE(list.OnBtnUp(15, 15));
        for (int index = 0; index < 63; ++index)
            buttons[index]->SetVisible(FALSE);
        Owner::commands.clear();
        EXPECT_TRUE(list.OnBtnDown(15, 15));
        EXPECT_FALSE(list.OnBtnDown(15, 15));
        EXPECT_EQ(Owner::commands, std::vector<WPARAM>{163});
    });
}

// The owner's check at the end finds an image that nobody deletes; a second deletion fails here.
TEST(Button, OwnsItsImageUnlessDetached) {
    OnPlatform([](Owner& owner) {
        const HBITMAP shared = owner.Strip(2);
        auto first = MakeButton(owner, 1, BTN_MODE_PUSH);
        auto second = MakeButton(owner, 2, BTN_MODE_PUSH);
        first->SetImage(shared);
        first->SetImage(nullptr);
        second->SetImage(shared);
        EXPECT_EQ(second->DetachImage(), shared);
        second.reset();
        BITMAP header{};
        EXPECT_NE(GetObjectW(shared, sizeof header, &header), 0);
        first.reset();
        EXPECT_EQ(GetObjectW(shared, sizeof header, &header), 0);
    });
}

}  // namespace
}  // namespace tests
