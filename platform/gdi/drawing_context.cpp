#include "platform/gdi/drawing_context.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/gdi/gdi.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/api_call.h"
#include "platform/kernel/handle_table.h"

namespace platform::gdi {
namespace {

using ContextTable = kernel::HandleTable<DrawingContext>;

ContextTable& TheContexts() {
    static ContextTable table{kernel::kDeviceContexts};
    return table;
}

void Deselect(HGDIOBJ selected) {
    if (selected)
        --FindObject(selected)->selections;
}

}  // namespace

RECT DrawingContext::Drawable() const {
    return Intersect(clip, {0, 0, surface->width(), surface->height()});
}

HDC AddContext(DrawingContext context) {
    context.brush = StockBrush();
    context.font = StockFont();
    for (const HGDIOBJ selected : {context.bitmap, context.brush, context.font})
        if (selected)
            ++FindObject(selected)->selections;
    return reinterpret_cast<HDC>(
        TheContexts().Insert(std::make_shared<DrawingContext>(std::move(context))));
}

std::shared_ptr<DrawingContext> FindContext(HDC dc) {
    auto context = TheContexts().Find(reinterpret_cast<std::uintptr_t>(dc));
    if (!context)
        SetLastError(ERROR_INVALID_HANDLE);
    return context;
}

bool RemoveContext(HDC dc, bool of_window) {
    const auto context = FindContext(dc);
    if (!context)
        return false;
    if (context->of_window != of_window) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    for (const HGDIOBJ selected : {context->bitmap, context->brush, context->font})
        Deselect(selected);
    TheContexts().Remove(reinterpret_cast<std::uintptr_t>(dc));
    return true;
}

void DropContexts() {
    TheContexts() = ContextTable{kernel::kDeviceContexts};
}

void Fill(DrawingContext& context, const RECT& rectangle, std::uint32_t pixel) {
    const RECT visible = Intersect(rectangle, context.Drawable());
    if (IsEmpty(visible))
        return;
    const RECT kept = Intersect(visible, context.surface->kept());
    for (int y = kept.top; y < kept.bottom; ++y)
        std::fill_n(context.surface->row(y) + visible.left, Width(visible), pixel);
    context.surface->CoverTexts(visible);
}

ContextCall::ContextCall(HDC dc) : lock_(LockGdi()), context_(FindContext(dc)) {}

ContextCall::~ContextCall() {
    if (!drawn_ || !context_->drawn)
        return;
    const auto report = context_->drawn;
    lock_.unlock();
    report();
}

HDC CreateWindowDC(std::shared_ptr<Surface> surface, const RECT& clip,
                   std::function<void()> drawn) {
    const auto lock = LockGdi();
    return AddContext({.surface = std::move(surface),
                       .clip = clip,
                       .drawn = std::move(drawn),
                       .of_window = true});
}

bool DestroyWindowDC(HDC dc) {
    const auto lock = LockGdi();
    return RemoveContext(dc, true);
}

std::size_t DeviceContextCount() {
    const auto lock = LockGdi();
    return TheContexts().size();
}

}  // namespace platform::gdi

using namespace platform::gdi;

HDC CreateCompatibleDC(HDC like) {
    const platform::kernel::ApiCall call("CreateCompatibleDC");
    if (call.Fails())
        return nullptr;
    const auto lock = LockGdi();
    if (like && !FindContext(like))
        return nullptr;
    const HGDIOBJ bitmap = StockBitmap();
    return AddContext({.surface = FindObjectOfKind<Bitmap>(bitmap)->surface,
                       .clip = {0, 0, 1, 1},
                       .bitmap = bitmap});
}

BOOL DeleteDC(HDC dc) {
    const platform::kernel::ApiCall call("DeleteDC");
    if (call.Fails())
        return FALSE;
    const auto lock = LockGdi();
    return RemoveContext(dc, false);
}

int SetBkMode(HDC dc, int mode) {
    const platform::kernel::ApiCall call("SetBkMode");
    if (call.Fails())
        return 0;
    const ContextCall context(dc);
    if (!context)
        return 0;
    if (mode != TRANSPARENT && mode != OPAQUE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return std::exchange(context->background_mode, mode);
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    const platform::kernel::ApiCall call("SetTextColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? std::exchange(context->text_color, color) : CLR_INVALID;
}
