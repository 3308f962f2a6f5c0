#pragma once

#include <windows.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tests {

struct Seen {
    UINT message;
    WPARAM wparam;
    LPARAM lparam;
};

// A window that notes what it is told and lets a handler answer. Made and destroyed on one thread.
class TestWindow {
  public:
    using Handler = std::function<std::optional<LRESULT>(HWND, UINT, WPARAM, LPARAM)>;

    struct Options {
        RECT place{0, 0, 100, 100};
        DWORD style = WS_POPUP;
        DWORD extended_style = 0;
        HWND owner = NULL;
        LPCWSTR title = L"";
    };

    static constexpr wchar_t kClass[] = L"TestWindow";

    TestWindow() : TestWindow(Handler()) {}
    explicit TestWindow(Handler handler) : TestWindow(Options(), std::move(handler)) {}
    explicit TestWindow(const Options& options, Handler handler = {})
        : handler_(std::move(handler)) {
        WNDCLASSW settings{};
        settings.lpfnWndProc = Procedure;
        settings.lpszClassName = kClass;
        RegisterClassW(&settings);
        const RECT& place = options.place;
        handle_ = CreateWindowExW(options.extended_style, kClass, options.title, options.style,
                                  place.left, place.top, place.right - place.left,
                                  place.bottom - place.top, options.owner, NULL, NULL, this);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() {
        if (IsWindow(handle_))
            DestroyWindow(handle_);
    }

    HWND handle() const { return handle_; }
    operator HWND() const { return handle_; }

    void Show() const { ShowWindow(handle_, SW_SHOW); }
    void Forget() { seen_.clear(); }
    const std::vector<Seen>& seen() const { return seen_; }

    std::size_t Count(UINT message) const {
        return static_cast<std::size_t>(std::count_if(
            seen_.begin(), seen_.end(), [&](const Seen& each) { return each.message == message; }));
    }

    // The numbers of those of `interesting` that came, in order.
    std::vector<UINT> Order(const std::vector<UINT>& interesting) const {
        std::vector<UINT> order;
        for (const Seen& each : seen_)
            if (std::count(interesting.begin(), interesting.end(), each.message) != 0)
                order.push_back(each.message);
        return order;
    }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_NCCREATE)
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(
                                  reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams));
        auto* const self = reinterpret_cast<TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        self->seen_.push_back({message, wparam, lparam});
        if (self->handler_)
            if (const auto answer = self->handler_(window, message, wparam, lparam))
                return *answer;
        return DefWindowProcW(window, message, wparam, lparam);
    }

    Handler handler_;
    HWND handle_ = NULL;
    std::vector<Seen> seen_;
};

// A thread made through the API; its end is waited for.
class ApiThread {
  public:
    explicit ApiThread(std::function<void()> body) : body_(std::move(body)) {
        handle_ = CreateThread(NULL, 0, Entry, this, 0, &id_);
    }
    ApiThread(const ApiThread&) = delete;
    ApiThread& operator=(const ApiThread&) = delete;
    ~ApiThread() { Join(); }

    void Join() {
        if (handle_ == NULL)
            return;
        WaitForSingleObject(handle_, INFINITE);
        CloseHandle(std::exchange(handle_, HANDLE{}));
    }

    DWORD id() const { return id_; }
    HANDLE handle() const { return handle_; }

  private:
    static DWORD WINAPI Entry(LPVOID self) {
        static_cast<ApiThread*>(self)->body_();
        return 0;
    }

    std::function<void()> body_;
    DWORD id_ = 0;
    HANDLE handle_ = NULL;
};

// Handles the calling thread's messages until WM_QUIT; returns its exit code.
inline int RunMessageLoop() {
    MSG message{};
    while (GetMessageW(&message, NULL, 0, 0) > 0)
        DispatchMessageW(&message);
    return static_cast<int>(message.wParam);
}

// Handles what waits now.
inline void HandleWaiting() {
    MSG message{};
    while (PeekMessageW(&message, NULL, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

}  // namespace tests
