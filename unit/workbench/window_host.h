#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct SDL_Window;
struct SDL_Renderer;
struct SDL_Texture;
union SDL_Event;

namespace unit {

class VirtualUnit;

// The window on the host's desktop: the unit's screen, below it a line that tells the keys and the
// state. The mouse or a touch is the finger. Runs the hardware on the calling thread.
class WindowHost {
  public:
    // False with one line in `problem` when there is no display.
    static bool DisplayAvailable(std::string& problem);

    WindowHost(VirtualUnit& unit, std::string card);
    ~WindowHost();
    WindowHost(const WindowHost&) = delete;
    WindowHost& operator=(const WindowHost&) = delete;

    // Until the program has ended, the window was closed, or `asked_to_close`.
    void Run(const std::function<bool()>& asked_to_close);

  private:
    bool HandleEvents();
    void HandleKey(int key);
    void HandleTouch(const SDL_Event& event);
    void Present();
    std::string StatusLine() const;

    VirtualUnit& unit_;
    const std::string card_;
    SDL_Window* window_ = nullptr;
    SDL_Renderer* renderer_ = nullptr;
    SDL_Texture* screen_ = nullptr;
    bool finger_down_ = false;
    std::string shown_status_;
    std::uint64_t shown_version_ = 0;
};

}  // namespace unit
