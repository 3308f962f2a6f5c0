#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tests {

// Asks again and again until it holds; false when it does not within a minute of the host's time,
// which only a loaded machine comes near to.
bool Eventually(const std::function<bool()>& holds);

// The pixels of a display, 0x00RRGGBB, rows top-down.
struct Capture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    std::uint32_t At(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

// An X server without a screen, and `tolvane` in a window on it that fills its display. Both end
// with the object; a folder for files goes with it.
class XSession {
  public:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 800;

    XSession();
    ~XSession();
    XSession(const XSession&) = delete;
    XSession& operator=(const XSession&) = delete;

    // Starts the program and waits for its window. False when it does not come.
    bool Start(const std::vector<std::string>& arguments);
    // Ctrl-C; the exit status.
    int Interrupt();

    // xdotool's words, one command: "mousemove 10 10 click 1".
    void Do(const std::string& words) const;
    void ClickAt(int x, int y) const;
    Capture Look() const;

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    std::string Read(const std::string& name) const;

  private:
    std::string Output(const std::string& command) const;

    std::string folder_;
    std::string display_;
    pid_t server_ = 0;
    pid_t program_ = 0;
};

}  // namespace tests
