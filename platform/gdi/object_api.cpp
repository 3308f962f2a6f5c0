#include <windows.h>

#include <cstring>
#include <utility>

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/text_font.h"
#include "platform/kernel/api_call.h"

using namespace platform::gdi;

namespace {

HGDIOBJ* SelectedOfType(DrawingContext& context, DWORD type) {
    switch (type) {
        case OBJ_BITMAP:
            return &context.bitmap;
        case OBJ_BRUSH:
            return &context.brush;
        case OBJ_FONT:
            return &context.font;
        default:
            return nullptr;
    }
}

// A memory device context draws on its bitmap, and no other one may at the same time.
bool Attach(DrawingContext& context, HGDIOBJ handle, const DrawingObject& object) {
    const bool elsewhere = !object.stock && object.selections != 0 && context.bitmap != handle;
    if (context.of_window || elsewhere) {
        SetLastError(context.of_window ? ERROR_INVALID_PARAMETER : ERROR_BUSY);
        return false;
    }
    context.surface = std::get<Bitmap>(object.content).surface;
    context.clip = {0, 0, context.surface->width(), context.surface->height()};
    return true;
}

BITMAP Describe(const Bitmap& bitmap) {
    return {.bmType = 0,
            .bmWidth = bitmap.surface->width(),
            .bmHeight = bitmap.surface->height(),
            .bmWidthBytes = bitmap.surface->width() * 4,
            .bmPlanes = 1,
            .bmBitsPixel = 32,
            .bmBits = nullptr};
}

LOGBRUSH Describe(const Brush& brush) {
    return {.lbStyle = brush.hollow ? BS_HOLLOW : BS_SOLID, .lbColor = brush.color, .lbHatch = 0};
}

LOGFONTW Describe(const Font& font) {
    return font.description;
}

}  // namespace

HBRUSH CreateSolidBrush(COLORREF color) {
    const platform::kernel::ApiCall call("CreateSolidBrush");
    if (call.Fails())
        return nullptr;
    const auto lock = LockGdi();
    return static_cast<HBRUSH>(AddObject({.content = Brush{color}}));
}

HFONT CreateFontIndirectW(const LOGFONTW* description) {
    const platform::kernel::ApiCall call("CreateFontIndirectW");
    if (call.Fails())
        return nullptr;
    const auto lock = LockGdi();
    if (!description) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Font font{*description};
    font.description.lfFaceName[LF_FACESIZE - 1] = L'\0';
    if (!FindTextFont(font.description))
        return nullptr;
    return static_cast<HFONT>(AddObject({.content = font}));
}

HGDIOBJ GetStockObject(int index) {
    const platform::kernel::ApiCall call("GetStockObject");
    if (call.Fails())
        return nullptr;
    const auto lock = LockGdi();
    const HGDIOBJ object = StockObject(index);
    if (!object)
        SetLastError(ERROR_NOT_SUPPORTED);
    return object;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ handle) {
    const platform::kernel::ApiCall call("SelectObject");
    if (call.Fails())
        return nullptr;
    const ContextCall context(dc);
    if (!context)
        return nullptr;
    const auto object = FindObject(handle);
    if (!object)
        return nullptr;
    if (std::holds_alternative<Bitmap>(object->content) && !Attach(*context, handle, *object))
        return nullptr;
    HGDIOBJ& selected = *SelectedOfType(*context, TypeOfObject(handle));
    ++object->selections;
    --FindObject(selected)->selections;
    return std::exchange(selected, handle);
}

HGDIOBJ GetCurrentObject(HDC dc, UINT type) {
    const platform::kernel::ApiCall call("GetCurrentObject");
    if (call.Fails())
        return nullptr;
    const ContextCall context(dc);
    if (!context)
        return nullptr;
    const HGDIOBJ* selected = SelectedOfType(*context, type);
    if (!selected || !*selected) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return *selected;
}

DWORD GetObjectType(HGDIOBJ handle) {
    const platform::kernel::ApiCall call("GetObjectType");
    if (call.Fails())
        return 0;
    const auto lock = LockGdi();
    const DWORD last_error = GetLastError();
    if (const auto context = FindContext(static_cast<HDC>(handle)))
        return context->of_window ? OBJ_DC : OBJ_MEMDC;
    SetLastError(last_error);
    return TypeOfObject(handle);
}

int GetObjectW(HGDIOBJ handle, int size, LPVOID buffer) {
    const platform::kernel::ApiCall call("GetObjectW");
    if (call.Fails())
        return 0;
    const auto lock = LockGdi();
    const auto object = FindObject(handle);
    if (!object)
        return 0;
    return std::visit(
        [&](const auto& content) {
            const auto description = Describe(content);
            constexpr int kSize = sizeof(description);
            if (!buffer)
                return kSize;
            if (size < kSize) {
                SetLastError(ERROR_INVALID_PARAMETER);
                return 0;
            }
            std::memcpy(buffer, &description, kSize);
            return kSize;
        },
        object->content);
}

BOOL DeleteObject(HGDIOBJ handle) {
    const platform::kernel::ApiCall call("DeleteObject");
    if (call.Fails())
        return FALSE;
    const auto lock = LockGdi();
    return RemoveObject(handle);
}
