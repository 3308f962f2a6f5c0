#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/gdi/surface.h"

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

// Observes broadcasts (messages posted to HWND_BROADCAST): called on the posting thread without
// locks. Set before threads start.
void ObserveBroadcasts(std::function<void(UINT message, WPARAM wparam, LPARAM lparam)> observer);

// The string a message number was registered with, or empty.
std::wstring RegisteredMessageName(UINT message);

}  // namespace platform::window
