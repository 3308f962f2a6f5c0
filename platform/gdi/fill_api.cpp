#include <windows.h>

#include <algorithm>

#include "platform/gdi/color.h"
#include "platform/gdi/drawing_context.h"
#include "platform/gdi/fill.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"

namespace platform::gdi {

void Fill(DrawingContext& context, const RECT& rectangle, std::uint32_t pixel) {
    const RECT visible = Intersect(rectangle, context.Drawable());
    if (IsEmpty(visible))
        return;
    const RECT kept = Intersect(visible, context.surface->kept());
    for (int y = kept.top; y < kept.bottom; ++y)
        std::fill_n(context.surface->row(y) + visible.left, Width(visible), pixel);
    context.surface->CoverTexts(visible);
}

}  // namespace platform::gdi

using namespace platform::gdi;

namespace {

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
    if (!brush->hollow) {
        Fill(*context, *rectangle, PixelOf(brush->color));
        context.Drawn();
    }
    return 1;
}

COLORREF GetPixel(HDC dc, int x, int y) {
    const platform::kernel::ApiCall call("GetPixel");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    if (!context)
        return CLR_INVALID;
    const RECT readable = Intersect(context->Drawable(), context->surface->kept());
    if (IsEmpty(Intersect(RectangleAt(x, y, 1, 1), readable))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return CLR_INVALID;
    }
    return ColorOf(context->surface->row(y)[x]);
}
