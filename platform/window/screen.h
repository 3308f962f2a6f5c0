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

// The board's side of the window manager. Any thread, host threads included, without locks held.

// Start must be called after kernel::Boot and before the first window, End once after the last
// thread has ended. End returns how many windows were left.
void Start();
std::size_t End();

// The graphics plane: what the visible windows drew, bottom to top, on black.
gdi::Surface ComposeScreen();

// A finger on the screen: becomes WM_LBUTTONDOWN, WM_MOUSEMOVE and WM_LBUTTONUP of the highest
// visible window under it, unless that window is disabled. The window is chosen when a thread
// fetches the message: a touch made while the program was busy goes to what the program shows then.
// Points outside the screen are ignored.
enum class Touch { kDown, kMove, kUp };
void TouchScreen(Touch touch, int x, int y);

// Posts to all windows of this process, as another application's broadcast does.
void PostToAll(UINT message, WPARAM wparam, LPARAM lparam);

// The calls of platform::OtherProcesses that other processes make of this one. A number stands for
// one window only, for as long as the process lives.
OtherProcessWindow FindOwnWindow(const std::optional<std::wstring_view>& class_name,
                                 const std::optional<std::wstring_view>& title);
bool BringOwnForward(OtherProcessWindow window, bool with_owned);

struct WindowState {
    HWND handle;
    std::wstring class_name;
    std::wstring title;
    RECT rectangle;
    DWORD style;
    DWORD extended_style;
    bool visible;
    bool enabled;
    bool topmost;
    bool foreground;
};
// From the top of the z-order to its bottom.
std::vector<WindowState> TopLevelWindows();

// A window's running timers: id and due time.
std::map<UINT_PTR, kernel::Time> RunningTimers(HWND window);

// Observes broadcasts (messages posted to HWND_BROADCAST): called on the posting thread without
// locks. Set before threads start.
void ObserveBroadcasts(std::function<void(UINT message, WPARAM wparam, LPARAM lparam)> observer);

// The string a message number was registered with, or empty.
std::wstring RegisteredMessageName(UINT message);

}  // namespace platform::window
