#include "platform/window/z_order.h"

#include <algorithm>

namespace platform::window {
namespace {

bool IsInTree(kernel::KernelLock& lock, const Window& root, HWND handle) {
    while (handle != NULL && handle != root.handle) {
        const auto window = FindWindowObject(lock, handle);
        handle = window ? window->owner : NULL;
    }
    return handle != NULL;
}

const Window& TopOwner(kernel::KernelLock& lock, const Window& window) {
    const auto owner = window.owner ? FindWindowObject(lock, window.owner) : nullptr;
    return owner ? TopOwner(lock, *owner) : window;
}

// Sorts by rank, keeping the order of equals.
template <class Rank>
void Arrange(kernel::KernelLock& lock, Rank rank) {
    auto& order = TheDesktop(lock).z_order;
    std::stable_sort(order.begin(), order.end(),
                     [&](const auto& a, const auto& b) { return rank(*a) < rank(*b); });
}

void LiftTree(kernel::KernelLock& lock, const Window& root) {
    Arrange(lock, [&](const Window& window) {
        return (window.topmost() ? 0 : 2) + (IsInTree(lock, root, window.handle) ? 0 : 1);
    });
}

void MarkTree(kernel::KernelLock& lock, const Window& root, bool topmost) {
    for (const auto& window : TheDesktop(lock).z_order) {
        if (!IsInTree(lock, root, window->handle))
            continue;
        window->extended_style &= ~WS_EX_TOPMOST;
        window->extended_style |= topmost ? WS_EX_TOPMOST : 0;
    }
}

const Window& Root(kernel::KernelLock& lock, const Window& window, bool with_owners) {
    return with_owners ? TopOwner(lock, window) : window;
}

}  // namespace

void MoveToTop(kernel::KernelLock& lock, Window& window, bool with_owners) {
    LiftTree(lock, Root(lock, window, with_owners));
    LiftTree(lock, window);
}

void MoveToBottom(kernel::KernelLock& lock, Window& window, bool with_owners) {
    const Window& root = Root(lock, window, with_owners);
    MarkTree(lock, root, false);
    Arrange(lock, [&](const Window& each) {
        return IsInTree(lock, root, each.handle) ? 2 : each.topmost() ? 0 : 1;
    });
}

void MoveBehind(kernel::KernelLock& lock, Window& window, const Window& other) {
    if (IsInTree(lock, window, other.handle))
        return;
    if (window.topmost() && !other.topmost())
        MarkTree(lock, window, false);
    if (window.topmost() != other.topmost()) {
        LiftTree(lock, window);
        return;
    }
    // Behind `other`, but not behind the own owner.
    bool passed = false;
    std::vector<HWND> behind;
    for (const auto& each : TheDesktop(lock).z_order) {
        passed = passed || each->handle == window.owner;
        if (passed && !IsInTree(lock, window, each->handle))
            behind.push_back(each->handle);
        passed = passed || each.get() == &other;
    }
    Arrange(lock, [&](const Window& each) {
        if (IsInTree(lock, window, each.handle))
            return 1;
        return std::find(behind.begin(), behind.end(), each.handle) == behind.end() ? 0 : 2;
    });
}

void SetTopmost(kernel::KernelLock& lock, Window& window, bool topmost, bool with_owners) {
    MarkTree(lock, Root(lock, window, with_owners && !topmost), topmost);
    MoveToTop(lock, window, with_owners);
}

}  // namespace platform::window
