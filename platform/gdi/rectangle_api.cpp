#include <windows.h>

#include "platform/gdi/rectangle.h"

using namespace platform;

namespace {

BOOL Store(LPRECT target, const RECT& rectangle) {
    *target = rectangle;
    return TRUE;
}

BOOL Refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

}  // namespace

BOOL SetRect(LPRECT rectangle, int left, int top, int right, int bottom) {
    return rectangle ? Store(rectangle, {left, top, right, bottom}) : Refuse();
}

BOOL SetRectEmpty(LPRECT rectangle) {
    return rectangle ? Store(rectangle, {}) : Refuse();
}

BOOL OffsetRect(LPRECT rectangle, int dx, int dy) {
    return rectangle ? Store(rectangle, gdi::Moved(*rectangle, dx, dy)) : Refuse();
}

BOOL EqualRect(const RECT* a, const RECT* b) {
    if (!a || !b)
        return Refuse();
    return a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}

BOOL IsRectEmpty(const RECT* rectangle) {
    return !rectangle || gdi::IsEmpty(*rectangle);
}

BOOL PtInRect(const RECT* rectangle, POINT point) {
    return rectangle && point.x >= rectangle->left && point.x < rectangle->right &&
           point.y >= rectangle->top && point.y < rectangle->bottom;
}
