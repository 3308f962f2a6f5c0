#include <windows.h>

#include <cstring>

#include "platform/gdi/bitmap.h"
#include "platform/gdi/drawing_context.h"
#include "platform/kernel/api_call.h"

namespace platform::gdi {
namespace {

// More than any picture of this screen needs, and far less than an int of bytes holds.
constexpr int kLargestSide = 16384;
constexpr int kLargestArea = 64 * 1024 * 1024;

}  // namespace

HBITMAP AddBitmap(int width, int height, const std::uint32_t* pixels) {
    if (width < 1 || height < 1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (width > kLargestSide || height > kLargestSide || width > kLargestArea / height) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    // An image is read, not drawn on.
    auto surface = pixels ? std::make_shared<Surface>(width, height, Surface::kAllRows)
                          : std::make_shared<Surface>(width, height);
    if (pixels) {
        std::uint32_t* target = surface->row(0);
        for (std::size_t i = 0; i < surface->pixels().size(); ++i)
            target[i] = pixels[i] & 0xFFFFFF;
    }
    return static_cast<HBITMAP>(AddObject({.content = Bitmap{std::move(surface)}}));
}

}  // namespace platform::gdi

using namespace platform::gdi;

HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height) {
    const platform::kernel::ApiCall call("CreateCompatibleBitmap");
    if (call.Fails())
        return nullptr;
    const ContextCall context(dc);
    if (!context)
        return nullptr;
    // A side of 0 asks for the smallest bitmap there is.
    if (width == 0 || height == 0)
        width = height = 1;
    return AddBitmap(width, height, nullptr);
}
