#include <windows.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/line_break.h"
#include "platform/gdi/rectangle.h"
#include "platform/gdi/text_engine.h"
#include "platform/gdi/text_line.h"
#include "platform/kernel/api_call.h"

namespace platform::gdi {
namespace {

// The paragraphs of a text; a line end at the very end starts no further paragraph.
std::vector<std::wstring_view> Paragraphs(std::wstring_view text) {
    std::vector<std::wstring_view> paragraphs;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(L'\n'), text.size());
        std::wstring_view paragraph = text.substr(0, end);
        if (paragraph.ends_with(L'\r'))
            paragraph.remove_suffix(1);
        paragraphs.push_back(paragraph);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return paragraphs;
}

int LineLeft(const RECT& rectangle, int width, UINT format) {
    if (format & DT_CENTER)
        return rectangle.left + (Width(rectangle) - width) / 2;
    if (format & DT_RIGHT)
        return rectangle.right - width;
    return rectangle.left;
}

int TextTop(const RECT& rectangle, int height, UINT format) {
    // DT_VCENTER and DT_BOTTOM apply to several lines too: see docs/platform-differences.md. The
    // shift rounds down also for a text that is higher than its rectangle.
    if (format & DT_VCENTER)
        return rectangle.top + ((Height(rectangle) - height) >> 1);
    if (format & DT_BOTTOM)
        return rectangle.bottom - height;
    return rectangle.top;
}

// A line and where its cell stands.
struct PlacedLine {
    std::shared_ptr<const TextLine> line;
    int x;
    int y;
};

// A text in its rectangle, as DrawTextW's format says.
struct TextLayout {
    std::vector<PlacedLine> lines;
    int width = 0;  // of the widest line
    int height = 0;
    int top = 0;
};

// The text that is drawn: without the marks of prefix characters, and on one line with spaces for
// line ends, as the format says.
std::wstring ReadableText(std::wstring_view text, UINT format) {
    std::wstring readable;
    for (std::size_t i = 0; i < text.size(); ++i) {
        wchar_t character = text[i];
        // The mark is dropped and no line drawn under the character: there is no keyboard.
        if (character == L'&' && !(format & DT_NOPREFIX)) {
            if (++i >= text.size())
                break;
            character = text[i];
        }
        const bool line_end = character == L'\n' || character == L'\r';
        const bool space = character == L'\t' || (line_end && (format & DT_SINGLELINE));
        readable += space ? L' ' : character;
    }
    return readable;
}

// With the GDI lock held.
TextLayout LayOut(const std::shared_ptr<const TextFont>& font, std::wstring_view text,
                  const RECT& rectangle, UINT format) {
    const bool wraps = (format & DT_WORDBREAK) && !(format & DT_SINGLELINE);
    TextLayout layout;
    const auto add = [&](std::shared_ptr<const TextLine> line) {
        layout.width = std::max(layout.width, line->width());
        layout.lines.push_back({std::move(line), 0, 0});
    };
    for (const std::wstring_view paragraph : Paragraphs(text)) {
        auto whole = FindTextLine(font, std::wstring(paragraph));
        if (!wraps || whole->width() <= Width(rectangle)) {
            add(std::move(whole));
            continue;
        }
        const ShapedText& shaped = whole->shaped();
        for (const LineOfText& line :
             BreakLines(paragraph, shaped.starts, shaped.edges, Width(rectangle)))
            add(FindTextLine(font,
                             std::wstring(paragraph.substr(line.begin, line.end - line.begin))));
    }
    layout.height = static_cast<int>(layout.lines.size()) * font->height();
    layout.top = TextTop(rectangle, layout.height, format);
    int y = layout.top;
    for (PlacedLine& placed : layout.lines) {
        placed.x = LineLeft(rectangle, placed.line->width(), format);
        placed.y = y;
        y += font->height();
    }
    return layout;
}

// Without tab stops and ellipses.
constexpr UINT kSupportedFormats = DT_CENTER | DT_RIGHT | DT_VCENTER | DT_BOTTOM | DT_WORDBREAK |
                                   DT_SINGLELINE | DT_NOCLIP | DT_EXTERNALLEADING | DT_CALCRECT |
                                   DT_NOPREFIX;

// Of OPAQUE text.
constexpr COLORREF kBackground = RGB(255, 255, 255);

// A coverage of 0 leaves `target` unchanged, 255 gives exactly `color`.
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

// The first byte that is not 0, or the end. Most of a line is 0.
const std::uint8_t* SkipZeros(const std::uint8_t* byte, const std::uint8_t* end) {
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
        for (const std::uint8_t* covered = SkipZeros(begin, end); covered != end;
             covered = SkipZeros(covered + 1, end))
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
                 PixelOf(kBackground));
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
}  // namespace platform::gdi

using namespace platform::gdi;

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
    return layout.top + layout.height - rectangle->top;
}
