#include "platform/window/desktop.h"

#include <algorithm>

#include "platform/kernel/kernel.h"
#include "platform/kernel/thread.h"
#include "platform/window/class_registry.h"
#include "platform/window/destruction.h"

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
        states.push_back({window->window_class->name, window->title, window->rectangle,
                          window->visible(), window->enabled(), window->topmost()});
    return states;
}

}  // namespace platform::window
