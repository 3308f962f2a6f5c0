#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/unit_workbench/x_session.h"
#include "unit/workbench/layout.h"

// The program's window on an X server, with a real mouse and keyboard.

namespace tests {
namespace {

// Where buttons of the wizard are on the unit's screen, and things of the panel in the window.
struct Place {
    int x;
    int y;
};
constexpr Place kPowerOn{500, 438};
constexpr Place kNoticeOk{700, 438};
constexpr Place kCardIn{962, 248};
constexpr Place kCommandLine{300, 782};
constexpr Place kSerialLineTab{50, 526};
constexpr Place kDebugOutputTab{140, 526};

class Window : public XSession {
  protected:
    // The unit's screen in a window of the session's size.
    static Place OnScreen(Place place) {
        const unit::Area screen = unit::PlaceAll(XSession::kWidth, XSession::kHeight, 1,
                                                 unit::kUsualDock, unit::Scaling::kWhole)
                                      .screen;
        return {static_cast<int>(screen.x) + place.x, static_cast<int>(screen.y) + place.y};
    }
    void Click(Place place) { ClickAt(place.x, place.y); }
    bool Logs(const std::string& text) {
        return WaitUntil([&] { return Read("log").find(text) != std::string::npos; });
    }
};

TEST_F(Window, ShowsTheUnitsScreenAndFollowsMouseAndKeyboard) {
    ASSERT_TRUE(Open({"--speed", "4", "--log", Path("log")})) << Read("err");
    ASSERT_TRUE(Logs("DVR_RUNNING_STATE_NORMAL"));

    // A command typed into the panel: its letters are text, not keys that act.
    Click(kCommandLine);
    Do("type --delay 20 'screenshot " + Path("screen.png") + "'");
    Do("key Return");
    std::optional<unit::Picture> screen;
    ASSERT_TRUE(WaitUntil([&] {
        std::string problem;
        screen = unit::ReadPng(Path("screen.png"), problem);
        return screen.has_value();
    }));
    EXPECT_EQ(Read("log").find("PLUG_IN"), std::string::npos);

    // The window shows the same, pixel by pixel, above the task bar and its clock; beside it there
    // is a panel.
    const auto shows_screen = [&] {
        const unit::Picture window = Look();
        for (int y = 0; y < 472; ++y)
            for (int x = 0; x < 800; ++x) {
                const Place place = OnScreen({x, y});
                if (window.At(place.x, place.y) != screen->At(x, y))
                    return false;
            }
        return true;
    };
    EXPECT_GT(std::ranges::count(screen->pixels, 0xFF0000U), 1000) << "the red warning";
    EXPECT_TRUE(WaitUntil(shows_screen));
    const unit::Picture window = Look();
    std::set<std::uint32_t> colors;
    for (int y = 0; y < window.height; ++y)
        for (int x = 850; x < window.width; ++x)
            colors.insert(window.At(x, y));
    EXPECT_GT(colors.size(), 50U) << "texts and buttons";

    // A button of the panel.
    Click(kCardIn);
    EXPECT_TRUE(Logs("DVR_STORAGE_CARD_PLUG_IN"));
    // A key, once no text field has the keyboard.
    Click(OnScreen({5, 5}));
    Do("key c");
    EXPECT_TRUE(WaitUntil([&] {
        const std::string log = Read("log");
        return log.substr(log.rfind("DVR_STORAGE_CARD_")).starts_with("DVR_STORAGE_CARD_PLUG_OUT");
    }));
    // The unit's screen.
    Click(OnScreen(kPowerOn));
    EXPECT_TRUE(Logs("CNotify::OnInitDialog"));
    Click(OnScreen(kNoticeOk));
    EXPECT_TRUE(Logs("CNotify::OnBtnUp, (x, y) = (700, 438)"));
    EXPECT_TRUE(Logs("---Mstar_C4_Scaler_SetWindow")) << "the video shows";
    EXPECT_TRUE(WaitUntil([&] { return !shows_screen(); }));

    // The tabs of the dock, one after the other and back again: the row below them tells which.
    const auto row = [&] {
        const unit::Picture capture = Look();
        std::vector<std::uint32_t> pixels;
        for (int y = 540; y < 568; ++y)
            for (int x = 10; x < 135; ++x)
                pixels.push_back(capture.At(x, y));
        return pixels;
    };
    const std::vector<std::uint32_t> serial_line = row();
    for (int round = 0; round < 2; ++round) {
        Click(kDebugOutputTab);
        EXPECT_TRUE(WaitUntil([&] { return row() != serial_line; })) << round;
        Click(kSerialLineTab);
        EXPECT_TRUE(WaitUntil([&] { return row() == serial_line; })) << round;
    }
    EXPECT_EQ(Interrupt(), 0);
    EXPECT_EQ(Read("err"), "");
}

TEST_F(Window, KioskShowsTheUnitsScreenAlone) {
    ASSERT_TRUE(Open({"--kiosk", "--stats", "--log", Path("log")})) << Read("err");
    // 800 x 480 in 1280 x 800: 1280 x 768, and black above and below.
    EXPECT_TRUE(WaitUntil([&] {
        const unit::Picture window = Look();
        int left = window.width;
        int right = 0;
        for (int y = 16 + 80; y < 16 + 140; ++y)
            for (int x = 0; x < window.width; ++x)
                // Smooth: hardly a pixel keeps its colour quite.
                if ((window.At(x, y) & 0xFF0000U) > 0xE00000U &&
                    (window.At(x, y) & 0xFFFF) < 0x2020) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
        return left < 100 && right > 1180;
    })) << "the red warning spans the display";
    const unit::Picture window = Look();
    for (const int y : {0, 15, 784, 799})
        for (int x = 0; x < window.width; ++x)
            ASSERT_EQ(window.At(x, y), 0U) << x << ' ' << y;
    // The finger's place scales with the screen.
    Click({kPowerOn.x * 16 / 10, 16 + kPowerOn.y * 16 / 10});
    EXPECT_TRUE(Logs("CNotify::OnInitDialog"));
    EXPECT_EQ(Interrupt(), 0);
    EXPECT_NE(Read("err").find(" pictures in "), std::string::npos);
}

}  // namespace
}  // namespace tests
