#include "platform/gdi/text_line.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <span>
#include <string>

#include "platform/gdi/gdi.h"
#include "platform/gdi/rectangle.h"
#include "platform/kernel/text.h"

namespace platform::gdi {
namespace {

std::atomic<std::size_t> g_shaped_lines{0};

// For Pango: one paragraph, whose control characters are drawn as missing characters.
std::string ParagraphOf(std::wstring_view text) {
    std::wstring paragraph(text);
    const auto is_control = [](wchar_t character) {
        return character < L' ' || character == 0x7F || character == 0x2028 || character == 0x2029;
    };
    std::ranges::replace_if(paragraph, is_control, L'\uFFFD');
    return kernel::ToUtf8(paragraph);
}

// Pango gives a space the font of the character beside it; its width must not depend on that.
PangoAttrList* FontsOfSpaces(const TextFont& font, const std::string& utf8) {
    PangoAttrList* const attributes = pango_attr_list_new();
    const char* const latin = pango_font_description_get_family(font.description());
    const auto give = [&](std::string_view space, const char* family) {
        for (std::size_t at = utf8.find(space); at != std::string::npos;
             at = utf8.find(space, at + space.size())) {
            PangoAttribute* const attribute = pango_attr_family_new(family);
            attribute->start_index = static_cast<guint>(at);
            attribute->end_index = static_cast<guint>(at + space.size());
            pango_attr_list_insert(attributes, attribute);
        }
    };
    give(" ", latin);
    give("\u3000", kJapaneseFamily);
    return attributes;
}

Owned<PangoLayout> LayOutLine(const TextFont& font, const std::string& utf8) {
    Owned<PangoLayout> layout(pango_layout_new(font.library().context()));
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    pango_layout_set_auto_dir(layout.get(), FALSE);
    pango_layout_set_font_description(layout.get(), font.description());
    PangoAttrList* const attributes = FontsOfSpaces(font, utf8);
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_text(layout.get(), utf8.data(), static_cast<int>(utf8.size()));
    return layout;
}

// Japanese characters start at whole pixels; Latin words are spaced more finely.
double LeftOfRun(const TextFont& font, const PangoGlyphItem& item, double pen) {
    return font.library().IsJapanese(item.item->analysis.font) ? std::round(pen) : pen;
}

// A run's glyphs at their stretched positions. Sets the widths in `item` to the stretched ones too.
GlyphRun PlaceGlyphs(const TextFont& font, PangoGlyphItem& item, double left) {
    PangoFont* const pango_font = item.item->analysis.font;
    const bool japanese = font.library().IsJapanese(pango_font);
    GlyphRun run{Owned<PangoFont>(PANGO_FONT(g_object_ref(pango_font))), japanese, {}};
    double pen = left;
    for (PangoGlyphInfo& info :
         std::span(item.glyphs->glyphs, std::size_t(item.glyphs->num_glyphs))) {
        PangoGlyphGeometry& place = info.geometry;
        const double offset =
            pango_units_to_double(place.x_offset) * font.HorizontalScale(japanese);
        // A character that no font has is drawn as glyph 0, the font's missing character.
        const bool missing = (info.glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0;
        if (info.glyph != PANGO_GLYPH_EMPTY)
            run.glyphs.push_back(
                {missing ? 0 : info.glyph, pen + offset, pango_units_to_double(place.y_offset)});
        place.width = pango_units_from_double(
            font.StretchedAdvance(pango_units_to_double(place.width), japanese));
        pen += pango_units_to_double(place.width);
    }
    return run;
}

std::vector<LineStart> LineStarts(PangoLayout* layout, std::wstring_view text) {
    int count = 0;
    const PangoLogAttr* const attributes = pango_layout_get_log_attrs_readonly(layout, &count);
    std::vector<LineStart> starts;
    for (std::size_t i = 0; i < text.size(); ++i)
        starts.push_back(StartBefore(text, i, attributes[i]));
    return starts;
}

ShapedText Shape(const TextFont& font, std::wstring_view text) {
    ShapedText shaped;
    shaped.edges.resize(text.size() + 1);
    const std::string utf8 = ParagraphOf(text);
    const Owned<PangoLayout> layout = LayOutLine(font, utf8);
    shaped.starts = LineStarts(layout.get(), text);
    double pen = 0;
    for (GSList* entry = pango_layout_get_line(layout.get(), 0)->runs; entry; entry = entry->next) {
        auto& item = *static_cast<PangoGlyphItem*>(entry->data);
        pen = LeftOfRun(font, item, pen);
        shaped.runs.push_back(PlaceGlyphs(font, item, pen));
        std::vector<int> widths(std::size_t(item.item->num_chars));
        pango_glyph_item_get_logical_widths(&item, utf8.data(), widths.data());
        auto index = std::size_t(g_utf8_strlen(utf8.data(), item.item->offset));
        for (const int width : widths) {
            shaped.edges[index++] = pen;
            pen += pango_units_to_double(width);
        }
    }
    shaped.edges.back() = pen;
    return shaped;
}

// How much of its em a glyph grows by emboldening.
constexpr double kBoldenSideways = 1.0 / 20;
constexpr double kBoldenUpwards = 1.0 / 40;

// Cairo's limit; wider than any screen.
constexpr int kWidestDrawing = 16384;

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct DestroyCairo {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using OwnedSurface = std::unique_ptr<cairo_surface_t, DestroySurface>;
using OwnedCairo = std::unique_ptr<cairo_t, DestroyCairo>;

// Emboldens the current path: it grows to the right of its left edge.
void Bolden(cairo_t* cairo, const TextFont& font) {
    cairo_scale(cairo, font.em_width(true) * kBoldenSideways, font.em_height() * kBoldenUpwards);
    cairo_set_line_width(cairo, 1);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cairo);
}

void DrawRun(cairo_t* cairo, const TextFont& font, const GlyphRun& run) {
    const bool bolden = run.japanese && font.key().bold;
    const double stretch = font.HorizontalScale(run.japanese);
    cairo_save(cairo);
    if (bolden)
        cairo_translate(cairo, font.em_width(true) * kBoldenSideways / 2, 0);
    std::vector<cairo_glyph_t> glyphs = run.glyphs;
    for (cairo_glyph_t& glyph : glyphs)
        glyph.x /= stretch;
    cairo_save(cairo);
    cairo_scale(cairo, stretch, 1);
    cairo_set_scaled_font(
        cairo, pango_cairo_font_get_scaled_font(reinterpret_cast<PangoCairoFont*>(run.font.get())));
    cairo_glyph_path(cairo, glyphs.data(), static_cast<int>(glyphs.size()));
    cairo_restore(cairo);
    if (bolden) {
        cairo_fill_preserve(cairo);
        Bolden(cairo, font);
    } else {
        cairo_fill(cairo);
    }
    cairo_restore(cairo);
}

// The smallest box around every byte of a drawing that is not 0.
RECT InkBox(const std::uint8_t* bytes, int stride, int width, int height) {
    RECT box{};
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* const row = bytes + std::ptrdiff_t(y) * stride;
        const auto is_inked = [](std::uint8_t coverage) { return coverage != 0; };
        const auto first = std::find_if(row, row + width, is_inked) - row;
        if (first == width)
            continue;
        int last = width - 1;
        while (row[last] == 0)
            --last;
        box = BoundingBox(box, {LONG(first), y, last + 1, y + 1});
    }
    return box;
}

Ink DrawInk(const TextFont& font, const ShapedText& text) {
    // Space for ink outside the cells.
    const int margin = font.height();
    const int width = static_cast<int>(
        std::min<double>(kWidestDrawing, std::ceil(text.edges.back()) + 2 * margin));
    const int height = font.height() + 2 * margin;
    const OwnedSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
    const OwnedCairo cairo(cairo_create(surface.get()));
    cairo_translate(cairo.get(), margin, margin + font.ascent());
    for (const GlyphRun& run : text.runs)
        DrawRun(cairo.get(), font, run);
    cairo_surface_flush(surface.get());
    const std::uint8_t* const bytes = cairo_image_surface_get_data(surface.get());
    if (!bytes)
        return {};
    const int stride = cairo_image_surface_get_stride(surface.get());
    const RECT box = InkBox(bytes, stride, width, height);
    Ink ink{.box = Moved(box, -margin, -margin), .coverage = {}};
    for (int y = box.top; y < box.bottom; ++y) {
        const std::uint8_t* const row = bytes + std::ptrdiff_t(y) * stride;
        ink.coverage.insert(ink.coverage.end(), row + box.left, row + box.right);
    }
    return ink;
}

}  // namespace

TextLine::TextLine(std::shared_ptr<const TextFont> font, std::wstring_view text)
    : font_(std::move(font)), shaped_(Shape(*font_, text)) {
    ++g_shaped_lines;
}

std::size_t ShapedLineCount() {
    return g_shaped_lines;
}

int TextLine::width() const {
    return static_cast<int>(std::lround(shaped_.edges.back()));
}

const Ink& TextLine::ink() const {
    if (!ink_)
        ink_ = DrawInk(*font_, shaped_);
    return *ink_;
}

}  // namespace platform::gdi
