#include "platform/window/neighbour_windows.h"

namespace platform::window {

HWND NeighbourHandle(kernel::KernelLock& lock, NeighbourWindow window) {
    auto& neighbours = TheDesktop(lock).neighbours;
    std::uintptr_t handle = 0;
    neighbours.ForEach([&](std::uintptr_t value, const std::shared_ptr<NeighbourWindow>& known) {
        if (*known == window)
            handle = value;
    });
    if (handle == 0)
        handle = neighbours.Insert(std::make_shared<NeighbourWindow>(window));
    return reinterpret_cast<HWND>(handle);
}

NeighbourWindow NeighbourBehind(kernel::KernelLock& lock, HWND handle) {
    const auto window = TheDesktop(lock).neighbours.Find(reinterpret_cast<std::uintptr_t>(handle));
    return window ? *window : NeighbourWindow{0};
}

void ForgetNeighbour(kernel::KernelLock& lock, HWND handle) {
    TheDesktop(lock).neighbours.Remove(reinterpret_cast<std::uintptr_t>(handle));
}

}  // namespace platform::window
