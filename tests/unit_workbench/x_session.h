#pragma once

#include <string>
#include <vector>

#include "tests/support/process.h"
#include "unit/picture/picture.h"

namespace tests {

// An X server without a screen, and `tolvane` in a window on it that fills its display.
class XSession : public Process {
  protected:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 800;

    XSession();
    ~XSession() override;

    // Starts the program and waits for its window. False when it does not come.
    bool Open(const std::vector<std::string>& arguments);
    // Ctrl-C; the exit status.
    int Interrupt();

    // xdotool's words, one command: "mousemove 10 10 click 1".
    void Do(const std::string& words) { Output("xdotool " + words); }
    void ClickAt(int x, int y);
    // What the display shows.
    unit::Picture Look();

  private:
    // Of a shell command on the display.
    std::string Output(const std::string& command);

    pid_t server_ = 0;
    pid_t program_ = 0;
};

}  // namespace tests
