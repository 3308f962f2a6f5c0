#include "platform/window/desktop.h"

#include <algorithm>

#include "platform/kernel/kernel.h"
#include "platform/kernel/thread.h"
#include "platform/window/class_registry.h"
#include "platform/window/lifetime.h"

namespace platform::window {

namespace {

Desktop& Storage() {
    static Desktop desktop;
    return desktop;
}

}  // namespace

Desktop& TheDesktop(kernel::KernelLock&) {
    return Storage();
}

std::shared_ptr<Window> FindWindowObject(kernel::KernelLock& lock, HWND handle) {
    return TheDesktop(lock).windows.Find(reinterpret_cast<std::uintptr_t>(handle));
}

std::shared_ptr<Window> RequireWindow(kernel::KernelLock& lock, HWND handle) {
    auto window = FindWindowObject(lock, handle);
    if (!window)
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return window;
}

bool IsOwn(kernel::KernelLock&, const Window& window) {
    return window.queue == kernel::CurrentThread().message_queue;
}

void ScreenChanged() {
    kernel::CurrentBoard().ScreenChanged();
}

void Start() {
    kernel::AtThreadEnd(EndThread);
    kernel::KernelLock lock = kernel::LockKernel();
    auto observer = std::move(TheDesktop(lock).broadcast_observer);
    TheDesktop(lock) = Desktop();
    TheDesktop(lock).broadcast_observer = std::move(observer);
    RegisterSystemClasses(lock);
}

std::size_t End() {
    kernel::KernelLock lock = kernel::LockKernel();
    const std::vector<std::shared_ptr<Window>> left = TheDesktop(lock).z_order;
    lock.unlock();
    for (const auto& window : left)
        Discard(window->handle);
    EndThread();
    lock.lock();
    TheDesktop(lock) = Desktop();
    return left.size();
}

void ObserveBroadcasts(std::function<void(UINT message, WPARAM wparam, LPARAM lparam)> observer) {
    kernel::KernelLock lock = kernel::LockKernel();
    TheDesktop(lock).broadcast_observer = std::move(observer);
}

std::vector<WindowState> TopLevelWindows() {
    kernel::KernelLock lock = kernel::LockKernel();
    std::vector<WindowState> states;
    for (const auto& window : TheDesktop(lock).z_order)
        states.push_back({window->handle, window->window_class->name, window->title,
                          window->rectangle, window->style, window->extended_style,
                          window->visible(), window->enabled(), window->topmost(),
                          window->handle == TheDesktop(lock).foreground});
    return states;
}

std::shared_ptr<gdi::Surface> MakeSurface(int width, int height, const gdi::Surface* previous) {
    auto surface = std::make_shared<gdi::Surface>(std::max(width, 1), std::max(height, 1));
    if (previous) {
        const auto lock = gdi::LockGdi();
        surface->CopyFrom(*previous, {0, 0, previous->width(), previous->height()}, 0, 0);
    }
    return surface;
}

gdi::Surface ComposeScreen() {
    struct Layer {
        std::shared_ptr<gdi::Surface> surface;
        RECT rectangle;
    };
    std::vector<Layer> layers;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        for (const auto& window : TheDesktop(lock).z_order)
            if (window->visible())
                layers.push_back({window->surface, window->rectangle});
    }
    gdi::Surface screen(kScreenWidth, kScreenHeight);
    const auto lock = gdi::LockGdi();
    std::for_each(layers.rbegin(), layers.rend(), [&](const Layer& layer) {
        const RECT whole{0, 0, layer.rectangle.right - layer.rectangle.left,
                         layer.rectangle.bottom - layer.rectangle.top};
        screen.CopyFrom(*layer.surface, whole, layer.rectangle.left, layer.rectangle.top);
    });
    return screen;
}

}  // namespace platform::window
