#pragma once

#include <windows.h>

#include <algorithm>

namespace platform::window {

// Rectangles for use under the kernel lock, where the API must not be called.

inline bool IsEmpty(const RECT& rectangle) {
    return rectangle.left >= rectangle.right || rectangle.top >= rectangle.bottom;
}

inline bool Contains(const RECT& rectangle, POINT point) {
    return point.x >= rectangle.left && point.x < rectangle.right && point.y >= rectangle.top &&
           point.y < rectangle.bottom;
}

inline RECT Intersect(const RECT& a, const RECT& b) {
    const RECT common{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                      std::min(a.bottom, b.bottom)};
    return IsEmpty(common) ? RECT{} : common;
}

inline RECT BoundingBox(const RECT& a, const RECT& b) {
    if (IsEmpty(a) || IsEmpty(b))
        return IsEmpty(a) ? b : a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
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
