#include <windows.h>

#include <cstring>
#include <utility>

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/text_font.h"
#include "platform/kernel/api_call.h"

namespace platform::gdi {
namespace {

// More than any picture of this screen needs; the size in bytes still fits an int.
constexpr int kLargestSide = 16384;
constexpr int kLargestArea = 64 * 1024 * 1024;

}  // namespace

HBITMAP AddBitmap(int width, int height, const std::uint32_t* pixels) {
    if (width < 1 || height < 1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (width > kLargestSide || height > kLargestSide || width > kLargestArea / height) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    // An image is only read: it keeps all rows.
    auto surface = pixels ? std::make_shared<Surface>(width, height, Surface::kAllRows)
                          : std::make_shared<Surface>(width, height);
    if (pixels) {
        std::uint32_t* target = surface->row(0);
        for (std::size_t i = 0; i < surface->pixels().size(); ++i)
            target[i] = pixels[i] & 0xFFFFFF;
    }
    return static_cast<HBITMAP>(AddObject({.content = Bitmap{std::move(surface)}}));
}

}  // namespace platform::gdi

using namespace platform::gdi;

namespace {

// The object of the same kind that is selected now.
HGDIOBJ& SelectedLike(DrawingContext& context, const DrawingObject& object) {
    if (std::holds_alternative<Bitmap>(object.content))
        return context.bitmap;
    return std::holds_alternative<Brush>(object.content) ? context.brush : context.font;
}

// A memory device context draws on its bitmap; a bitmap is in one device context at a time.
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
    return {.lbStyle = BS_SOLID, .lbColor = brush.color, .lbHatch = 0};
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
    HGDIOBJ& selected = SelectedLike(*context, *object);
    ++object->selections;
    --FindObject(selected)->selections;
    return std::exchange(selected, handle);
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

HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height) {
    const platform::kernel::ApiCall call("CreateCompatibleBitmap");
    if (call.Fails())
        return nullptr;
    const ContextCall context(dc);
    if (!context)
        return nullptr;
    // By the API a side of 0 means a bitmap of one pixel.
    if (width == 0 || height == 0)
        width = height = 1;
    return AddBitmap(width, height, nullptr);
}
