#pragma once

#include <windows.h>

#include <algorithm>

#include "platform/gdi/rectangle.h"

namespace platform::window {

// Rectangles for use under the kernel lock, where the API must not be called.

using gdi::BoundingBox;
using gdi::Intersect;
using gdi::IsEmpty;

inline bool Contains(const RECT& rectangle, POINT point) {
    return point.x >= rectangle.left && point.x < rectangle.right && point.y >= rectangle.top &&
           point.y < rectangle.bottom;
}

// What is left of `rectangle` without `part`, as far as one rectangle can tell: a part that does
// not cut off a whole side leaves everything.
inline RECT Without(const RECT& rectangle, const RECT& part) {
    RECT rest = rectangle;
    const bool full_width = part.left <= rest.left && part.right >= rest.right;
    const bool full_height = part.top <= rest.top && part.bottom >= rest.bottom;
    if (full_width && part.top <= rest.top)
        rest.top = std::max(rest.top, part.bottom);
    if (full_width && part.bottom >= rest.bottom)
        rest.bottom = std::min(rest.bottom, part.top);
    if (full_height && part.left <= rest.left)
        rest.left = std::max(rest.left, part.right);
    if (full_height && part.right >= rest.right)
        rest.right = std::min(rest.right, part.left);
    return IsEmpty(rest) ? RECT{} : rest;
}

}  // namespace platform::window
