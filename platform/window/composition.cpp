#include <algorithm>

#include "platform/window/desktop.h"

namespace platform::window {

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
