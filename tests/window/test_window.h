#pragma once

#include <algorithm>
#include <atomic>
#include <map>
#include <optional>

#include "platform/window/screen.h"
#include "tests/support/platform_test.h"

namespace tests {

inline constexpr UINT kPosted = WM_USER + 1;
inline constexpr UINT kSent = WM_USER + 2;
inline constexpr UINT kStop = WM_USER + 3;

inline const HWND kNoWindow = reinterpret_cast<HWND>(UINT_PTR{0x1248});

namespace window = platform::window;
using window::Touch;
using Numbers = std::vector<UINT>;

// The state of a window; nothing when there is none.
inline std::optional<window::WindowState> StateOf(HWND handle) {
    for (const auto& state : window::TopLevelWindows())
        if (state.handle == handle)
            return state;
    return std::nullopt;
}

inline HWND Foreground() {
    const auto states = window::TopLevelWindows();
    const auto found = std::ranges::find(states, true, &window::WindowState::foreground);
    return found == states.end() ? NULL : found->handle;
}

// A window that records its messages and lets a handler process them. Created and destroyed on one
// thread.
class TestWindow {
  public:
    using Handler = std::function<std::optional<LRESULT>(HWND, UINT, WPARAM)>;

    struct Options {
        RECT place{0, 0, 100, 100};
        DWORD style = WS_POPUP;
        HWND owner = NULL;
        LPCWSTR title = L"";
    };

    static constexpr wchar_t kClass[] = L"TestWindow";

    explicit TestWindow(Handler handler = {}) : TestWindow(Options(), std::move(handler)) {}
    explicit TestWindow(const Options& options, Handler handler = {})
        : handler_(std::move(handler)) {
        WNDCLASSW settings{};
        settings.lpfnWndProc = Procedure;
        settings.lpszClassName = kClass;
        RegisterClassW(&settings);
        const auto& [left, top, right, bottom] = options.place;
        handle_ = CreateWindowExW(0, kClass, options.title, options.style, left, top, right - left,
                                  bottom - top, options.owner, NULL, NULL, this);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() { DestroyWindow(handle_); }

    operator HWND() const { return handle_; }
    HWND handle() const { return handle_; }
    void Show() const { ShowWindow(handle_, SW_SHOW); }
    void Forget() { seen_.clear(); }
    std::size_t Count(UINT message) const { return Order({message}).size(); }

    // The numbers of those of `interesting` that came, in order.
    Numbers Order(const Numbers& interesting) const {
        Numbers order;
        for (const MSG& each : seen_)
            if (std::count(interesting.begin(), interesting.end(), each.message) != 0)
                order.push_back(each.message);
        return order;
    }

    // The last message of that number, or an empty one.
    MSG Last(UINT message) const {
        const auto found = std::ranges::find(seen_.rbegin(), seen_.rend(), message, &MSG::message);
        return found == seen_.rend() ? MSG{} : *found;
    }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        static thread_local std::map<HWND, TestWindow*> windows;
        if (message == WM_NCCREATE)
            windows[window] =
                static_cast<TestWindow*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
        TestWindow* const self = windows.at(window);
        self->seen_.push_back({window, message, wparam, lparam, 0, {}});
        const auto answer = self->handler_ ? self->handler_(window, message, wparam) : std::nullopt;
        return answer ? *answer : DefWindowProcW(window, message, wparam, lparam);
    }

    Handler handler_;
    HWND handle_ = NULL;
    std::vector<MSG> seen_;
};

// A handler of one message.
inline TestWindow::Handler On(UINT number, std::function<LRESULT(HWND, WPARAM)> answer) {
    return [=](HWND handle, UINT message, WPARAM wparam) {
        return message == number ? std::optional(answer(handle, wparam)) : std::nullopt;
    };
}

// A shown window on a thread of its own, which handles its messages until Stop.
class WindowThread {
  public:
    explicit WindowThread(TestWindow::Options options, TestWindow::Handler handler = {})
        : thread_([this, options, handler] {
              const TestWindow target(options, handler);
              target.Show();
              window_ = target;
              MSG message{};
              while (GetMessageW(&message, NULL, 0, 0) > 0 && message.message != kStop)
                  DispatchMessageW(&message);
          }) {
        while (window_ == NULL)
            Sleep(1);
    }
    ~WindowThread() { Stop(); }

    void Stop() const { PostMessageW(window_, kStop, 0, 0); }
    operator HWND() const { return window_; }

  private:
    std::atomic<HWND> window_{nullptr};
    Crew thread_;
};

// Handles the waiting messages.
inline void HandleWaiting() {
    MSG message{};
    while (PeekMessageW(&message, NULL, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

}  // namespace tests
