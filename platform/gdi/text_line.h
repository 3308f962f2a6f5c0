#pragma once

#include <pango/pangocairo.h>
#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/gdi/font_library.h"
#include "platform/gdi/line_break.h"
#include "platform/gdi/text_font.h"

namespace platform::gdi {

// Adjacent glyphs of one font file. Positions are in pixels from the line's left edge and its base
// line.
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

// How much of each pixel a line of text covers, 0 to 255, in the smallest box that holds all of it.
struct Ink {
    RECT box{};  // relative to the line's left edge and the top of its cell
    std::vector<std::uint8_t> coverage;
};

// One line of text in one font. With the GDI lock held.
class TextLine {
  public:
    TextLine(std::shared_ptr<const TextFont> font, std::wstring_view text);

    // In pixels, without the overhang of the last character.
    int width() const;
    const ShapedText& shaped() const { return shaped_; }
    // Drawn at the first call.
    const Ink& ink() const;

  private:
    std::shared_ptr<const TextFont> font_;
    ShapedText shaped_;
    mutable std::optional<Ink> ink_;
};

}  // namespace platform::gdi
