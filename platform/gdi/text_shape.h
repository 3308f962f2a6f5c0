#pragma once

#include <pango/pangocairo.h>

#include <string_view>
#include <vector>

#include "platform/gdi/font_library.h"
#include "platform/gdi/line_break.h"
#include "platform/gdi/text_font.h"

namespace platform::gdi {

// Neighbours drawn from one font file. Positions are in pixels from the line's left edge and its
// base line.
struct GlyphRun {
    Owned<PangoFont> font;
    bool japanese;
    std::vector<cairo_glyph_t> glyphs;
};

// One line of text as glyphs in their places.
struct ShapedText {
    std::vector<GlyphRun> runs;
    // The left edge of every character and the right edge of the last one, in pixels.
    std::vector<double> edges;
    // Where lines may begin, a value for each character.
    std::vector<LineStart> starts;
};

// With the GDI lock held.
ShapedText Shape(const TextFont& font, std::wstring_view text);

}  // namespace platform::gdi
