#include <windows.h>

#include <algorithm>
#include <memory>

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"

using namespace platform::gdi;

namespace {

bool Supported(bool supported) {
    if (!supported)
        SetLastError(ERROR_NOT_SUPPORTED);
    return supported;
}

// The part of a copied rectangle that is visible in the device context.
RECT Visible(const ContextCall& context, const RECT& target, const RECT& source) {
    return IsEmpty(target) || IsEmpty(source) ? RECT{} : Intersect(target, context->Drawable());
}

// A brush may also be a system colour's index plus one.
std::shared_ptr<Brush> BrushFor(HBRUSH handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    COLORREF color = 0;
    const bool flagged = (value & ~std::uintptr_t{0xFF}) == SYS_COLOR_INDEX_FLAG;
    if (flagged && SystemColor(static_cast<int>(value) - 1, color))
        return std::make_shared<Brush>(Brush{color});
    return FindObjectOfKind<Brush>(handle);
}

}  // namespace

BOOL BitBlt(HDC dc, int x, int y, int width, int height, HDC source, int source_x, int source_y,
            DWORD code) {
    const platform::kernel::ApiCall call("BitBlt");
    if (call.Fails() || !Supported(code == SRCCOPY && width >= 0 && height >= 0))
        return FALSE;
    ContextCall context(dc);
    const auto from = context ? FindContext(source) : nullptr;
    if (!from)
        return FALSE;
    const RECT visible = Visible(context, RectangleAt(x, y, width, height),
                                 RectangleAt(source_x, source_y, width, height));
    if (!IsEmpty(visible))
        context->surface->CopyFrom(*from->surface, Moved(visible, source_x - x, source_y - y),
                                   visible.left, visible.top);
    context.Drawn();
    return TRUE;
}

BOOL TransparentImage(HDC dc, LONG x, LONG y, LONG width, LONG height, HANDLE source, LONG source_x,
                      LONG source_y, LONG source_width, LONG source_height, COLORREF transparent) {
    const platform::kernel::ApiCall call("TransparentImage");
    const bool unstretched = width == source_width && height == source_height;
    if (call.Fails() || !Supported(unstretched && width >= 0 && height >= 0))
        return FALSE;
    ContextCall context(dc);
    const auto from = context ? FindContext(static_cast<HDC>(source)) : nullptr;
    if (!from || !Supported(from->surface != context->surface))
        return FALSE;
    const Surface& image = *from->surface;
    const RECT visible = Visible(context, RectangleAt(x, y, width, height),
                                 RectangleAt(source_x, source_y, width, height));
    const RECT written = Intersect(visible, context->surface->kept());
    const std::uint32_t key = PixelOf(transparent);
    bool opaque = true;
    for (LONG row_y = written.top; row_y < written.bottom; ++row_y) {
        const LONG from_y = row_y - y + source_y;
        for (LONG row_x = written.left; row_x < written.right; ++row_x) {
            const LONG from_x = row_x - x + source_x;
            const bool painted = Contains(image.kept(), {from_x, from_y, from_x + 1, from_y + 1}) &&
                                 image.row(from_y)[from_x] != key;
            opaque = opaque && painted;
            if (painted)
                context->surface->row(row_y)[row_x] = image.row(from_y)[from_x];
        }
    }
    if (opaque)
        context->surface->CoverTexts(visible);
    context.Drawn();
    return TRUE;
}

int FillRect(HDC dc, const RECT* rectangle, HBRUSH handle) {
    const platform::kernel::ApiCall call("FillRect");
    if (call.Fails())
        return 0;
    ContextCall context(dc);
    if (!context)
        return 0;
    if (!rectangle) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto brush = BrushFor(handle);
    if (!brush)
        return 0;
    Fill(*context, *rectangle, PixelOf(brush->color));
    context.Drawn();
    return 1;
}

BOOL EqualRect(const RECT* a, const RECT* b) {
    if (!a || !b) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}

BOOL PtInRect(const RECT* rectangle, POINT point) {
    return rectangle && point.x >= rectangle->left && point.x < rectangle->right &&
           point.y >= rectangle->top && point.y < rectangle->bottom;
}
