#include <windows.h>

#include <memory>

#include "platform/gdi/color.h"
#include "platform/gdi/drawing_context.h"
#include "platform/gdi/raster_operation.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"

using namespace platform::gdi;

namespace {

// Where the pixels of one rectangle come from in another one: the nearest.
class Stretch {
  public:
    Stretch(const RECT& target, const RECT& source) : target_(target), source_(source) {}

    int SourceX(int x) const {
        return Map(x - target_.left, Width(target_), Width(source_)) + source_.left;
    }
    int SourceY(int y) const {
        return Map(y - target_.top, Height(target_), Height(source_)) + source_.top;
    }

  private:
    static int Map(int offset, int target, int source) {
        return static_cast<int>((2LL * offset + 1) * source / (2LL * target));
    }

    RECT target_;
    RECT source_;
};

bool SameSize(const RECT& a, const RECT& b) {
    return Width(a) == Width(b) && Height(a) == Height(b);
}

bool ValidSize(int width, int height) {
    if (width >= 0 && height >= 0)
        return true;
    SetLastError(ERROR_NOT_SUPPORTED);
    return false;
}

bool Inside(const Surface& surface, int x, int y) {
    const RECT kept = surface.kept();
    return x >= 0 && y >= 0 && x < kept.right && y < kept.bottom;
}

// Copies without change, texts included.
void Copy(DrawingContext& target, const RECT& target_rectangle, const DrawingContext& source,
          const RECT& source_rectangle) {
    const int dx = source_rectangle.left - target_rectangle.left;
    const int dy = source_rectangle.top - target_rectangle.top;
    const RECT visible = Intersect(target_rectangle, target.Drawable());
    if (!IsEmpty(visible))
        target.surface->CopyFrom(*source.surface, Moved(visible, dx, dy), visible.left,
                                 visible.top);
}

void Combine(DrawingContext& target, const RECT& target_rectangle, const Surface* source,
             const RECT& source_rectangle, std::uint32_t pattern, RasterOperation operation) {
    const RECT visible = Intersect(target_rectangle, target.Drawable());
    if (IsEmpty(visible) || (source && IsEmpty(source_rectangle)))
        return;
    const Stretch stretch(target_rectangle, source_rectangle);
    const RECT kept = Intersect(visible, target.surface->kept());
    for (int y = kept.top; y < kept.bottom; ++y) {
        std::uint32_t* row = target.surface->row(y);
        for (int x = visible.left; x < visible.right; ++x) {
            std::uint32_t source_pixel = 0;
            if (source) {
                const int source_x = stretch.SourceX(x);
                const int source_y = stretch.SourceY(y);
                if (!Inside(*source, source_x, source_y))
                    continue;
                source_pixel = source->row(source_y)[source_x];
            }
            row[x] = operation.Combine(pattern, source_pixel, row[x]);
        }
    }
    if (!operation.UsesDestination())
        target.surface->CoverTexts(visible);
}

// Where BitBlt, StretchBlt and PatBlt meet. Rectangles that would mirror are not supported.
BOOL Blit(HDC target_dc, const RECT& target, HDC source_dc, const RECT& source, DWORD code) {
    ContextCall context(target_dc);
    if (!context)
        return FALSE;
    const RasterOperation operation(code);
    std::shared_ptr<DrawingContext> from;
    if (operation.UsesSource()) {
        from = FindContext(source_dc);
        if (!from)
            return FALSE;
    }
    if (code == SRCCOPY && SameSize(target, source)) {
        Copy(*context, target, *from, source);
    } else {
        const auto brush = FindObjectOfKind<Brush>(context->brush);
        if (operation.UsesPattern() && brush->hollow)
            return TRUE;
        // A copy of its own, lest a stretch reads what it wrote.
        const std::unique_ptr<const Surface> pixels =
            from ? std::make_unique<const Surface>(*from->surface) : nullptr;
        Combine(*context, target, pixels.get(), source, PixelOf(brush->color), operation);
    }
    context.Drawn();
    return TRUE;
}

// The pixels of a device context or a bitmap; null, with the last error set, for anything else.
std::shared_ptr<Surface> SurfaceOf(HANDLE handle) {
    const DWORD last_error = GetLastError();
    if (const auto context = FindContext(static_cast<HDC>(handle)))
        return context->surface;
    SetLastError(last_error);
    const auto bitmap = FindObjectOfKind<Bitmap>(handle);
    return bitmap ? bitmap->surface : nullptr;
}

}  // namespace

BOOL BitBlt(HDC target, int x, int y, int width, int height, HDC source, int source_x, int source_y,
            DWORD code) {
    const platform::kernel::ApiCall call("BitBlt");
    if (call.Fails())
        return FALSE;
    return ValidSize(width, height) && Blit(target, RectangleAt(x, y, width, height), source,
                                            RectangleAt(source_x, source_y, width, height), code);
}

BOOL StretchBlt(HDC target, int x, int y, int width, int height, HDC source, int source_x,
                int source_y, int source_width, int source_height, DWORD code) {
    const platform::kernel::ApiCall call("StretchBlt");
    if (call.Fails())
        return FALSE;
    return ValidSize(width, height) && ValidSize(source_width, source_height) &&
           Blit(target, RectangleAt(x, y, width, height), source,
                RectangleAt(source_x, source_y, source_width, source_height), code);
}

BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD code) {
    const platform::kernel::ApiCall call("PatBlt");
    if (call.Fails())
        return FALSE;
    if (RasterOperation(code).UsesSource()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const RECT rectangle = RectangleAt(x, y, width, height);
    return ValidSize(width, height) && Blit(dc, rectangle, nullptr, rectangle, code);
}

BOOL TransparentImage(HDC dc, LONG x, LONG y, LONG width, LONG height, HANDLE source, LONG source_x,
                      LONG source_y, LONG source_width, LONG source_height, COLORREF transparent) {
    const platform::kernel::ApiCall call("TransparentImage");
    if (call.Fails())
        return FALSE;
    if (!ValidSize(width, height) || !ValidSize(source_width, source_height))
        return FALSE;
    ContextCall context(dc);
    if (!context)
        return FALSE;
    std::shared_ptr<const Surface> image = SurfaceOf(source);
    if (!image)
        return FALSE;
    if (image == context->surface)
        image = std::make_shared<const Surface>(*image);
    const RECT target = RectangleAt(x, y, width, height);
    const RECT from = RectangleAt(source_x, source_y, source_width, source_height);
    const RECT visible = IsEmpty(from) ? RECT{} : Intersect(target, context->Drawable());
    const Stretch stretch(target, from);
    const std::uint32_t key = PixelOf(transparent);
    bool opaque = true;
    const RECT kept = Intersect(visible, context->surface->kept());
    for (int row_y = kept.top; row_y < kept.bottom; ++row_y) {
        std::uint32_t* row = context->surface->row(row_y);
        for (int row_x = visible.left; row_x < visible.right; ++row_x) {
            const int from_x = stretch.SourceX(row_x);
            const int from_y = stretch.SourceY(row_y);
            const bool painted =
                Inside(*image, from_x, from_y) && image->row(from_y)[from_x] != key;
            opaque = opaque && painted;
            if (painted)
                row[row_x] = image->row(from_y)[from_x];
        }
    }
    if (opaque)
        context->surface->CoverTexts(visible);
    context.Drawn();
    return TRUE;
}
