#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "platform/gdi/text_shape.h"

namespace platform::gdi {

// How much of each pixel a line of text covers, 0 to 255, in the smallest box that holds all of it.
struct Ink {
    RECT box{};  // relative to the line's left edge and the top of its cell
    std::vector<std::uint8_t> coverage;
};

// With the GDI lock held.
Ink DrawInk(const TextFont& font, const ShapedText& text);

}  // namespace platform::gdi
