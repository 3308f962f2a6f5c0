#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <algorithm>
#include <set>
#include <span>

#include "tests/support/process.h"
#include "unit/picture/picture.h"
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

constexpr int kWidth = 1280;
constexpr int kHeight = 800;

// An X server without a screen, and `tolvane` in a window on it that fills its display.
class Window : public Process {
  protected:
    Window() {
        // The server chooses a free display and tells it. It must not begin anew when a first
        // client has come and gone: the next would find nobody there.
        server_ =
            Start("/bin/sh",
                  {"-c", "exec Xvfb -displayfd 1 -nolisten tcp -noreset -screen 0 1280x800x24"},
                  "display-");
        EXPECT_TRUE(WaitUntil([this] { return Read("display-out").ends_with("\n"); }))
            << Read("display-err");
        const std::string number = Read("display-out");
        setenv("DISPLAY", (":" + number.substr(0, number.find('\n'))).c_str(), 1);
        setenv("HOME", Path("").c_str(), 1);
        setenv("SDL_VIDEODRIVER", "x11", 1);
        setenv("SDL_RENDER_DRIVER", "software", 1);
        // A graphics driver would bring threads and locks that the thread sanitizer does not see.
        setenv("SDL_FRAMEBUFFER_ACCELERATION", "0", 1);
        // SDL has unloaded the X libraries before leaks are looked for, so what they leave has no
        // name that a suppression could tell.
        setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
    }
    ~Window() override {
        // Not by force: it has a lock and a socket to take away.
        kill(server_, SIGTERM);
        Wait(server_);
    }

    // Starts the program and waits for its window.
    void Open(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--log", Path("log")});
        program_ = Start(TOLVANE_BINARY, arguments);
        ASSERT_TRUE(WaitUntil([this] {
            return !Output("xdotool search --onlyvisible --name 'Tolvane - virtual unit'").empty();
        })) << Read("err");
    }
    // Ctrl-C; the exit status.
    int Interrupt() {
        kill(program_, SIGINT);
        return Wait(program_);
    }
    std::string Output(const std::string& command) {
        Run("/bin/sh", {"-c", command}, "shell-");
        return Read("shell-out");
    }
    // xdotool's words, one command.
    void Do(const std::string& words) { Output("xdotool " + words); }
    void Click(Place place) {
        Do("mousemove " + std::to_string(place.x) + " " + std::to_string(place.y) + " click 1");
    }
    // The unit's screen in a window of the session's size.
    static Place OnScreen(Place place) {
        const unit::Area screen =
            unit::PlaceAll(kWidth, kHeight, 1, unit::kUsualDock, unit::Scaling::kWhole).screen;
        return {static_cast<int>(screen.x) + place.x, static_cast<int>(screen.y) + place.y};
    }
    // What the display shows.
    unit::Picture Look() {
        Output("import -silent -window root -quality 1 " + Path("look.png"));
        std::string problem;
        const auto picture = unit::ReadPng(Path("look.png"), problem);
        EXPECT_TRUE(picture) << problem;
        return picture.value_or(
            unit::Picture{kWidth, kHeight, std::vector<std::uint32_t>(kWidth * kHeight)});
    }
    std::vector<std::uint32_t> Pixels(int left, int top, int right, int bottom) {
        const unit::Picture picture = Look();
        std::vector<std::uint32_t> pixels;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                pixels.push_back(picture.At(x, y));
        return pixels;
    }
    bool Logs(const std::string& text) {
        return WaitUntil([&] { return Read("log").find(text) != std::string::npos; });
    }

  private:
    pid_t server_ = 0;
    pid_t program_ = 0;
};

TEST_F(Window, ShowsTheUnitsScreenAndFollowsMouseAndKeyboard) {
    Open({"--speed", "4"});
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
        const Place corner = OnScreen({0, 0});
        return std::ranges::equal(Pixels(corner.x, corner.y, corner.x + 800, corner.y + 472),
                                  std::span(screen->pixels).first(800 * 472));
    };
    EXPECT_GT(std::ranges::count(screen->pixels, 0xFF0000U), 1000) << "the red warning";
    EXPECT_TRUE(WaitUntil(shows_screen));
    const auto panel = Pixels(850, 0, kWidth, kHeight);
    EXPECT_GT(std::set(panel.begin(), panel.end()).size(), 50U) << "texts and buttons";

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
    const auto row = [this] { return Pixels(10, 540, 135, 568); };
    const auto serial_line = row();
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
    Open({"--kiosk", "--stats"});
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
    const std::vector<std::uint32_t> black(kWidth * 16);
    EXPECT_EQ(Pixels(0, 0, kWidth, 16), black);
    EXPECT_EQ(Pixels(0, 784, kWidth, 800), black);
    // The finger's place scales with the screen.
    Click({kPowerOn.x * 16 / 10, 16 + kPowerOn.y * 16 / 10});
    EXPECT_TRUE(Logs("CNotify::OnInitDialog"));
    EXPECT_EQ(Interrupt(), 0);
    EXPECT_NE(Read("err").find(" pictures in "), std::string::npos);
}

}  // namespace
}  // namespace tests
