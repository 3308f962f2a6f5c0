#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/board.h"
#include "platform/gdi/surface.h"
#include "platform/kernel/clock.h"

namespace platform::window {

inline constexpr int kScreenWidth = 800;
inline constexpr int kScreenHeight = 480;

// The board's side of the window manager. All of it may be called on any thread, the hardware's
// included, without locks held.

// To be called after kernel::Boot and before the first window; and once after the last thread has
// ended. End returns how many windows were left.
void Start();
std::size_t End();

// The graphics plane: what the visible windows drew, bottom to top, on black.
gdi::Surface ComposeScreen();

// A finger on the screen: becomes WM_LBUTTONDOWN, WM_MOUSEMOVE and WM_LBUTTONUP of the highest
// visible window under it, unless that one is disabled. Which window it is, is decided when the
// message is fetched: a touch made while the program was busy meets what the program shows then.
// Points outside the screen are ignored.
enum class Touch { kDown, kMove, kUp };
void TouchScreen(Touch touch, int x, int y);

// What an application of the unit's other processes would do to a window of this one.
void PostToAll(UINT message, WPARAM wparam, LPARAM lparam);

// What this process answers a neighbour that asks for a window: the highest one with that class and
// that title (case does not count, either may be left open), 0 for none; whether it is still there;
// and to bring it forward, with the windows that it owns if asked to, false when it is gone. A
// number stands for one window only, for as long as the process lives.
NeighbourWindow FindOwnWindow(const std::optional<std::wstring_view>& class_name,
                              const std::optional<std::wstring_view>& title);
bool HasWindow(NeighbourWindow window);
bool BringOwnForward(NeighbourWindow window, bool with_owned);

// The state of a top-level window, topmost first.
struct WindowState {
    std::wstring class_name;
    std::wstring title;
    RECT rectangle;
    bool visible;
    bool enabled;
    bool topmost;
};
std::vector<WindowState> TopLevelWindows();

// The timers that run for a window, by their ids.
std::map<UINT_PTR, kernel::Time> RunningTimers(HWND window);

// Observes broadcasts (messages posted to HWND_BROADCAST): called on the posting thread without
// locks. Set before threads start.
void ObserveBroadcasts(std::function<void(UINT message, WPARAM wparam, LPARAM lparam)> observer);

// The string a message number was registered with, or empty.
std::wstring RegisteredMessageName(UINT message);

}  // namespace platform::window
