#pragma once

#include <windows.h>

#include <cstdint>

namespace platform::gdi {

// A COLORREF has red in its lowest byte, a pixel of a surface has blue there.
constexpr std::uint32_t SwapRedAndBlue(std::uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

constexpr std::uint32_t PixelOf(COLORREF color) {
    return SwapRedAndBlue(color);
}

constexpr COLORREF ColorOf(std::uint32_t pixel) {
    return SwapRedAndBlue(pixel);
}

}  // namespace platform::gdi
