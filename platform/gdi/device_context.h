#pragma once

#include <windows.h>

#include <functional>
#include <memory>

#include "platform/gdi/surface.h"

namespace platform::gdi {

// Device contexts of the window manager: a DC that draws on a window's surface, clipped to `clip`
// (surface pixels). `drawn` is called after every drawing call, without any lock held.
// Any thread; the caller must not hold the GDI lock.
HDC CreateWindowDC(std::shared_ptr<Surface> surface, const RECT& clip, std::function<void()> drawn);

// Ends one; objects selected into it are let go of. False when it is none.
bool DestroyWindowDC(HDC dc);

// Objects alive, for leak checks: device contexts, and drawing objects that are not stock objects.
std::size_t DeviceContextCount();
std::size_t DrawingObjectCount();

}  // namespace platform::gdi
