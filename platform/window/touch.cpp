#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "platform/window/retrieval.h"

namespace platform::window {
namespace {

// Further touches are dropped until a thread fetches some.
constexpr std::size_t kMaxTouches = 256;

UINT MessageOf(Touch touch) {
    switch (touch) {
        case Touch::kDown:
            return WM_LBUTTONDOWN;
        case Touch::kUp:
            return WM_LBUTTONUP;
        case Touch::kMove:
            break;
    }
    return WM_MOUSEMOVE;
}

bool Contains(const RECT& rectangle, POINT point) {
    return point.x >= rectangle.left && point.x < rectangle.right && point.y >= rectangle.top &&
           point.y < rectangle.bottom;
}

std::shared_ptr<Window> WindowAt(kernel::KernelLock& lock, POINT position) {
    for (const auto& window : TheDesktop(lock).z_order)
        if (window->visible() && Contains(window->rectangle, position))
            return window;
    return nullptr;
}

MSG MakeMessage(const Window& window, const TouchInput& input) {
    MSG message{};
    message.hwnd = window.handle;
    message.message = MessageOf(input.touch);
    message.wParam = input.touch == Touch::kUp ? 0 : MK_LBUTTON;
    message.lParam = MAKELPARAM(input.position.x - window.rectangle.left,
                                input.position.y - window.rectangle.top);
    message.time = input.time;
    message.pt = input.position;
    return message;
}

}  // namespace

std::optional<MSG> NextTouchMessage(kernel::KernelLock& lock, MessageQueue& queue,
                                    const MessageFilter& filter, bool remove) {
    auto& touches = TheDesktop(lock).touches;
    for (auto input = touches.begin(); input != touches.end();) {
        const auto window = WindowAt(lock, input->position);
        if (!window || !window->enabled()) {
            input = touches.erase(input);
            continue;
        }
        const UINT number = MessageOf(input->touch);
        const DWORD kind = input->touch == Touch::kMove ? QS_MOUSEMOVE : QS_MOUSEBUTTON;
        if (window->queue.get() == &queue && filter.Accepts(kind, window->handle, number)) {
            const MSG message = MakeMessage(*window, *input);
            if (remove)
                touches.erase(input);
            return message;
        }
        ++input;
    }
    return std::nullopt;
}

void TouchScreen(Touch touch, int x, int y) {
    if (x < 0 || y < 0 || x >= kScreenWidth || y >= kScreenHeight)
        return;
    kernel::KernelLock lock = kernel::LockKernel();
    Desktop& desktop = TheDesktop(lock);
    desktop.touch_position = {x, y};
    const TouchInput input{touch, {x, y}, MessageTime()};
    const bool follows_move = touch == Touch::kMove && !desktop.touches.empty() &&
                              desktop.touches.back().touch == Touch::kMove;
    if (follows_move)
        desktop.touches.back() = input;
    else if (desktop.touches.size() < kMaxTouches)
        desktop.touches.push_back(input);
    kernel::Wake(lock);
}

}  // namespace platform::window
