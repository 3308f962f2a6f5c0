#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/gdi/color.h"
#include "platform/gdi/drawing_context.h"
#include "platform/gdi/fill.h"
#include "platform/gdi/rectangle.h"
#include "platform/gdi/text_engine.h"
#include "platform/gdi/text_layout.h"
#include "platform/kernel/api_call.h"

using namespace platform::gdi;

namespace {

// Tab stops and ellipses are not among them.
constexpr UINT kSupportedFormats = DT_CENTER | DT_RIGHT | DT_VCENTER | DT_BOTTOM | DT_WORDBREAK |
                                   DT_SINGLELINE | DT_NOCLIP | DT_EXTERNALLEADING | DT_CALCRECT |
                                   DT_NOPREFIX;

// Leaves `target` as it is where nothing is covered, and exactly `color` where all is.
std::uint32_t Blend(std::uint32_t target, std::uint32_t color, std::uint32_t coverage) {
    if (coverage == 255)
        return color;
    std::uint32_t mixed = 0;
    for (const unsigned shift : {0U, 8U, 16U}) {
        const std::uint32_t from = (target >> shift) & 0xFF;
        const std::uint32_t to = (color >> shift) & 0xFF;
        mixed |= ((from * (255 - coverage) + to * coverage + 127) / 255) << shift;
    }
    return mixed;
}

// The first of some bytes that is not 0, or their end. Most of a line is bare.
const std::uint8_t* SkipBare(const std::uint8_t* byte, const std::uint8_t* end) {
    std::uint64_t eight = 0;
    while (end - byte >= std::ptrdiff_t{sizeof eight}) {
        std::memcpy(&eight, byte, sizeof eight);
        if (eight != 0)
            break;
        byte += sizeof eight;
    }
    return std::find_if(byte, end, [](std::uint8_t coverage) { return coverage != 0; });
}

// Returns the box of what was drawn.
RECT BlendInk(Surface& surface, const Ink& ink, int x, int y, const RECT& clip,
              std::uint32_t color) {
    const RECT box = Moved(ink.box, x, y);
    const RECT visible = Intersect(box, clip);
    const RECT kept = Intersect(visible, surface.kept());
    for (int row_y = kept.top; row_y < kept.bottom; ++row_y) {
        const std::uint8_t* const row =
            ink.coverage.data() + std::size_t(row_y - box.top) * std::size_t(Width(box));
        const std::uint8_t* const begin = row + (visible.left - box.left);
        const std::uint8_t* const end = begin + Width(visible);
        std::uint32_t* const pixels = surface.row(row_y) + visible.left;
        for (const std::uint8_t* covered = SkipBare(begin, end); covered != end;
             covered = SkipBare(covered + 1, end))
            pixels[covered - begin] = Blend(pixels[covered - begin], color, *covered);
    }
    return visible;
}

void Draw(DrawingContext& context, const TextLayout& layout, std::wstring text, int line_height,
          const RECT& clip) {
    if (context.background_mode == OPAQUE)
        for (const PlacedLine& placed : layout.lines)
            Fill(context,
                 Intersect(clip, {placed.x, placed.y, placed.x + placed.line->width(),
                                  placed.y + line_height}),
                 PixelOf(context.background_color));
    RECT box{};
    for (const PlacedLine& placed : layout.lines)
        box = BoundingBox(box, BlendInk(*context.surface, placed.line->ink(), placed.x, placed.y,
                                        clip, PixelOf(context.text_color)));
    if (!IsEmpty(box))
        context.surface->AddText({std::move(text), box, context.text_color});
}

std::shared_ptr<const TextFont> SelectedFont(const DrawingContext& context) {
    return FindTextFont(FindObjectOfKind<Font>(context.font)->description);
}

bool Refuse(DWORD error) {
    SetLastError(error);
    return false;
}

bool ValidText(const WCHAR* text, int count) {
    return (text && count >= -1) || count == 0 || Refuse(ERROR_INVALID_PARAMETER);
}

std::wstring_view TextOf(const WCHAR* text, int count) {
    if (count == 0)
        return {};
    return count == -1 ? std::wstring_view(text) : std::wstring_view(text, std::size_t(count));
}

}  // namespace

int DrawTextW(HDC dc, LPCWSTR text, int count, LPRECT rectangle, UINT format) {
    const platform::kernel::ApiCall call("DrawTextW");
    if (call.Fails())
        return 0;
    ContextCall context(dc);
    if (!context || !ValidText(text, count))
        return 0;
    if (!rectangle || !InRange(*rectangle)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (format & ~kSupportedFormats) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return 0;
    }
    const auto font = SelectedFont(*context);
    if (!font)
        return 0;
    std::wstring readable = ReadableText(TextOf(text, count), format);
    const TextLayout layout = LayOut(font, readable, *rectangle, format);
    if (format & DT_CALCRECT) {
        rectangle->right = rectangle->left + layout.width;
        rectangle->bottom = rectangle->top + layout.height;
        return layout.height;
    }
    if (layout.lines.empty())
        return 0;
    const RECT drawable = context->Drawable();
    const RECT clip = (format & DT_NOCLIP) ? drawable : Intersect(drawable, *rectangle);
    Draw(*context, layout, std::move(readable), font->height(), clip);
    context.Drawn();
    return layout.height;
}

BOOL GetTextExtentPoint32W(HDC dc, LPCWSTR text, int count, LPSIZE size) {
    const platform::kernel::ApiCall call("GetTextExtentPoint32W");
    if (call.Fails())
        return FALSE;
    const ContextCall context(dc);
    if (!context || !ValidText(text, count))
        return FALSE;
    if (!size || count < 0)
        return Refuse(ERROR_INVALID_PARAMETER);
    const auto font = SelectedFont(*context);
    if (!font)
        return FALSE;
    *size = {FindTextLine(font, std::wstring(TextOf(text, count)))->width(), font->height()};
    return TRUE;
}
