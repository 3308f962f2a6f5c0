#include "tests/unit_workbench/x_session.h"

#include <signal.h>
#include <stdlib.h>

namespace tests {

XSession::XSession() {
    // The server chooses a free display and tells it. It must not begin anew when a first client
    // has come and gone: the next would find nobody there.
    const std::string size = std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24";
    server_ =
        Start("/bin/sh", {"-c", "exec Xvfb -displayfd 1 -nolisten tcp -noreset -screen 0 " + size},
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
    // SDL has unloaded the X libraries before leaks are looked for, so what they leave has no name
    // that a suppression could tell.
    setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
}

XSession::~XSession() {
    // Not by force: it has a lock and a socket to take away.
    kill(server_, SIGTERM);
    Wait(server_);
}

bool XSession::Open(const std::vector<std::string>& arguments) {
    program_ = Start(TOLVANE_BINARY, arguments);
    return WaitUntil([this] {
        return !Output("xdotool search --onlyvisible --name 'Tolvane - virtual unit'").empty();
    });
}

int XSession::Interrupt() {
    kill(program_, SIGINT);
    return Wait(program_);
}

std::string XSession::Output(const std::string& command) {
    Run("/bin/sh", {"-c", command}, "shell-");
    return Read("shell-out");
}

void XSession::ClickAt(int x, int y) {
    Do("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

unit::Picture XSession::Look() {
    const std::string file = Path("look.png");
    Output("import -silent -window root -quality 1 " + file);
    std::string problem;
    const auto picture = unit::ReadPng(file, problem);
    EXPECT_TRUE(picture) << problem;
    return picture.value_or(
        unit::Picture{kWidth, kHeight, std::vector<std::uint32_t>(kWidth * kHeight)});
}

}  // namespace tests
