#include <windows.h>

#include <memory>

#include "platform/gdi/color.h"
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

// What of a rectangle shows when it is copied to a device context.
RECT Visible(const ContextCall& context, const RECT& target, const RECT& source) {
    return IsEmpty(target) || IsEmpty(source) ? RECT{} : Intersect(target, context->Drawable());
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
