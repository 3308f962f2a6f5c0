#pragma once

#include <windows.h>

#include <algorithm>

namespace platform::gdi {

// Rectangles for use under the GDI lock. The right and the bottom edge are outside.

inline bool IsEmpty(const RECT& rectangle) {
    return rectangle.left >= rectangle.right || rectangle.top >= rectangle.bottom;
}

inline int Width(const RECT& rectangle) {
    return rectangle.right - rectangle.left;
}

inline int Height(const RECT& rectangle) {
    return rectangle.bottom - rectangle.top;
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

inline bool Contains(const RECT& outer, const RECT& inner) {
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

inline RECT Moved(const RECT& rectangle, int dx, int dy) {
    // Wraps instead of overflowing, for coordinates far off the screen.
    const auto add = [](LONG a, LONG b) { return LONG(ULONG(a) + ULONG(b)); };
    return {add(rectangle.left, dx), add(rectangle.top, dy), add(rectangle.right, dx),
            add(rectangle.bottom, dy)};
}

// GDI takes coordinates of 27 bits.
inline bool InRange(const RECT& rectangle) {
    constexpr LONG kLimit = 1 << 27;
    const auto within = [](LONG value) { return value >= -kLimit && value <= kLimit; };
    return within(rectangle.left) && within(rectangle.top) && within(rectangle.right) &&
           within(rectangle.bottom);
}

// A rectangle of the API's x, y, width and height; empty when it is out of range.
inline RECT RectangleAt(int x, int y, int width, int height) {
    if (!InRange({x, y, width, height}))
        return {};
    const RECT rectangle{x, y, x + width, y + height};
    return InRange(rectangle) ? rectangle : RECT{};
}

}  // namespace platform::gdi
