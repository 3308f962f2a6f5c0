#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <set>

#include "tests/unit_workbench/x_session.h"
#include "unit/workbench/layout.h"

// The program's window on an X server, with a real mouse and keyboard.

namespace tests {
namespace {

// The unit's screen in a window of the session's size.
unit::Area Screen() {
    return unit::PlaceAll(XSession::kWidth, XSession::kHeight, 1, unit::kUsualDock,
                          unit::Scaling::kWhole)
        .screen;
}

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

class Window : public testing::Test {
  protected:
    void ClickOnScreen(Place place) {
        session_.ClickAt(static_cast<int>(Screen().x) + place.x,
                         static_cast<int>(Screen().y) + place.y);
    }
    void ClickInPanel(Place place) { session_.ClickAt(place.x, place.y); }
    void Type(const std::string& command) {
        ClickInPanel(kCommandLine);
        session_.Do("type --delay 20 '" + command + "'");
        session_.Do("key Return");
    }
    bool Logs(const std::string& text) {
        return Eventually([&] { return session_.Read("log").find(text) != std::string::npos; });
    }

    XSession session_;
};

std::vector<std::uint32_t> ReadPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
        return {};
    image.format = PNG_FORMAT_BGRA;
    std::vector<std::uint32_t> pixels(PNG_IMAGE_SIZE(image) / 4);
    // A file that is still being written is as good as none.
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0)
        return {};
    for (std::uint32_t& pixel : pixels)
        pixel &= 0xFFFFFF;
    return pixels;
}

TEST_F(Window, ShowsTheUnitsScreenAndFollowsMouseAndKeyboard) {
    ASSERT_TRUE(session_.Start({"--speed", "4", "--log", session_.Path("log")}))
        << session_.Read("err");
    ASSERT_TRUE(Logs("DVR_RUNNING_STATE_NORMAL"));

    // A command typed into the panel: its letters are text, not keys that act.
    Type("screenshot " + session_.Path("screen.png"));
    std::vector<std::uint32_t> screen;
    ASSERT_TRUE(Eventually([&] {
        screen = ReadPng(session_.Path("screen.png"));
        return screen.size() == 800U * 480U;
    }));
    EXPECT_EQ(session_.Read("log").find("PLUG_IN"), std::string::npos);

    // The window shows the same, pixel by pixel, above the task bar and its clock; beside it there
    // is a panel.
    const auto shows_screen = [&] {
        const Capture window = session_.Look();
        for (int y = 0; y < 472; ++y)
            for (int x = 0; x < 800; ++x)
                if (window.At(static_cast<int>(Screen().x) + x, static_cast<int>(Screen().y) + y) !=
                    screen[static_cast<std::size_t>(y) * 800 + static_cast<std::size_t>(x)])
                    return false;
        return true;
    };
    EXPECT_GT(std::ranges::count(screen, 0xFF0000U), 1000) << "the red warning";
    EXPECT_TRUE(Eventually(shows_screen));
    const Capture window = session_.Look();
    std::set<std::uint32_t> colors;
    for (int y = 0; y < window.height; ++y)
        for (int x = 850; x < window.width; ++x)
            colors.insert(window.At(x, y));
    EXPECT_GT(colors.size(), 50U) << "texts and buttons";

    // A button of the panel.
    ClickInPanel(kCardIn);
    EXPECT_TRUE(Logs("DVR_STORAGE_CARD_PLUG_IN"));
    // A key, once no text field has the keyboard.
    ClickOnScreen({5, 5});
    session_.Do("key c");
    const auto last_report = [&] {
        const std::string log = session_.Read("log");
        return log.substr(log.rfind("DVR_STORAGE_CARD_"));
    };
    EXPECT_TRUE(Eventually([&] { return last_report().starts_with("DVR_STORAGE_CARD_PLUG_OUT"); }));
    // The unit's screen.
    ClickOnScreen(kPowerOn);
    EXPECT_TRUE(Logs("CNotify::OnInitDialog"));
    ClickOnScreen(kNoticeOk);
    EXPECT_TRUE(Logs("CNotify::OnBtnUp, (x, y) = (700, 438)"));
    EXPECT_TRUE(Logs("---Mstar_C4_Scaler_SetWindow")) << "the video shows";
    EXPECT_TRUE(Eventually([&] { return !shows_screen(); }));

    // The tabs of the dock, one after the other and back again: the row below them tells which.
    const auto row = [&] {
        const Capture capture = session_.Look();
        std::vector<std::uint32_t> pixels;
        for (int y = 540; y < 568; ++y)
            for (int x = 10; x < 135; ++x)
                pixels.push_back(capture.At(x, y));
        return pixels;
    };
    const std::vector<std::uint32_t> serial_line = row();
    for (int round = 0; round < 2; ++round) {
        ClickInPanel(kDebugOutputTab);
        EXPECT_TRUE(Eventually([&] { return row() != serial_line; })) << round;
        ClickInPanel(kSerialLineTab);
        EXPECT_TRUE(Eventually([&] { return row() == serial_line; })) << round;
    }
    EXPECT_EQ(session_.Interrupt(), 0);
    EXPECT_EQ(session_.Read("err"), "");
}

TEST_F(Window, KioskShowsTheUnitsScreenAlone) {
    ASSERT_TRUE(session_.Start({"--kiosk", "--stats", "--log", session_.Path("log")}))
        << session_.Read("err");
    // 800 x 480 in 1280 x 800: 1280 x 768, and black above and below.
    const auto red_spans_the_display = [&] {
        const Capture window = session_.Look();
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
    };
    EXPECT_TRUE(Eventually(red_spans_the_display));
    const Capture window = session_.Look();
    for (const int y : {0, 10, 790, 799})
        for (int x = 0; x < window.width; ++x)
            ASSERT_EQ(window.At(x, y), 0U) << x << ' ' << y;
    // The finger's place scales with the screen.
    session_.ClickAt(kPowerOn.x * 16 / 10, 16 + kPowerOn.y * 16 / 10);
    EXPECT_TRUE(Logs("CNotify::OnInitDialog"));
    EXPECT_EQ(session_.Interrupt(), 0);
    EXPECT_NE(session_.Read("err").find(" pictures in "), std::string::npos);
}

}  // namespace
}  // namespace tests
