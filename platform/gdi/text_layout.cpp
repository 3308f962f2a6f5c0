#include "platform/gdi/text_layout.h"

#include <algorithm>

#include "platform/gdi/line_break.h"
#include "platform/gdi/rectangle.h"
#include "platform/gdi/text_engine.h"

namespace platform::gdi {
namespace {

// The paragraphs of a text; a line end after the last one begins no further one.
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
    // Rounded the same way for a text higher than its rectangle: never lower than the middle.
    if (format & DT_VCENTER)
        return rectangle.top + ((Height(rectangle) - height) >> 1);
    if (format & DT_BOTTOM)
        return rectangle.bottom - height;
    return rectangle.top;
}

}  // namespace

std::wstring ReadableText(std::wstring_view text, UINT format) {
    std::wstring readable;
    for (std::size_t i = 0; i < text.size(); ++i) {
        wchar_t character = text[i];
        // The mark is not drawn as a line under the character: no keyboard here would use it.
        if (character == L'&' && !(format & DT_NOPREFIX)) {
            if (++i >= text.size())
                break;
            character = text[i];
        }
        const bool line_end = character == L'\n' || character == L'\r';
        const bool blank = character == L'\t' || (line_end && (format & DT_SINGLELINE));
        readable += blank ? L' ' : character;
    }
    return readable;
}

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
    int y = TextTop(rectangle, layout.height, format);
    for (PlacedLine& placed : layout.lines) {
        placed.x = LineLeft(rectangle, placed.line->width(), format);
        placed.y = y;
        y += font->height();
    }
    return layout;
}

}  // namespace platform::gdi
