#include "platform/gdi/drawing_context.h"

#include "platform/gdi/device_context.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/handle_table.h"

namespace platform::gdi {
namespace {

using ContextTable = kernel::HandleTable<DrawingContext>;

ContextTable& TheContexts() {
    static ContextTable table{kernel::kDeviceContexts};
    return table;
}

void LetGo(HGDIOBJ selected) {
    if (selected)
        --FindObject(selected)->selections;
}

}  // namespace

RECT DrawingContext::Drawable() const {
    return Intersect(clip, {0, 0, surface->width(), surface->height()});
}

HDC AddContext(DrawingContext context) {
    context.brush = StockObject(WHITE_BRUSH);
    context.font = StockObject(SYSTEM_FONT);
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
        LetGo(selected);
    TheContexts().Remove(reinterpret_cast<std::uintptr_t>(dc));
    return true;
}

void DropContexts() {
    TheContexts() = ContextTable{kernel::kDeviceContexts};
}

ContextCall::ContextCall(HDC dc) : lock_(LockGdi()), context_(FindContext(dc)) {}

ContextCall::~ContextCall() {
    if (!drawn_ || !context_->drawn)
        return;
    const auto tell = context_->drawn;
    lock_.unlock();
    tell();
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
