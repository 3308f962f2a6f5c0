#include "platform/gdi/text_shape.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "platform/kernel/text.h"

namespace platform::gdi {
namespace {

// As Pango takes it: a paragraph, whose characters without a picture are drawn as missing ones.
std::string ParagraphOf(std::wstring_view text) {
    std::wstring paragraph(text);
    const auto is_control = [](wchar_t character) {
        return character < L' ' || character == 0x7F || character == 0x2028 || character == 0x2029;
    };
    std::ranges::replace_if(paragraph, is_control, L'\uFFFD');
    return kernel::ToUtf8(paragraph);
}

// Pango gives a blank the font of its neighbour; its width should not depend on that.
PangoAttrList* FontsOfBlanks(const TextFont& font, const std::string& utf8) {
    PangoAttrList* const attributes = pango_attr_list_new();
    const char* const latin = pango_font_description_get_family(font.description());
    const auto give = [&](std::string_view blank, const char* family) {
        for (std::size_t at = utf8.find(blank); at != std::string::npos;
             at = utf8.find(blank, at + blank.size())) {
            PangoAttribute* const attribute = pango_attr_family_new(family);
            attribute->start_index = static_cast<guint>(at);
            attribute->end_index = static_cast<guint>(at + blank.size());
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
    PangoAttrList* const attributes = FontsOfBlanks(font, utf8);
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_text(layout.get(), utf8.data(), static_cast<int>(utf8.size()));
    return layout;
}

// Japanese characters stand on whole pixels, Latin words are spaced more finely.
double LeftOfRun(const TextFont& font, const PangoGlyphItem& item, double pen) {
    return font.library().IsJapanese(item.item->analysis.font) ? std::round(pen) : pen;
}

// A run's glyphs where they stand once stretched; the widths that Pango keeps become those, too.
GlyphRun PlaceGlyphs(const TextFont& font, PangoGlyphItem& item, double left) {
    PangoFont* const pango_font = item.item->analysis.font;
    const bool japanese = font.library().IsJapanese(pango_font);
    GlyphRun run{Owned<PangoFont>(PANGO_FONT(g_object_ref(pango_font))), japanese, {}};
    double pen = left;
    for (PangoGlyphInfo& info :
         std::span(item.glyphs->glyphs, std::size_t(item.glyphs->num_glyphs))) {
        PangoGlyphGeometry& place = info.geometry;
        const double offset = pango_units_to_double(place.x_offset) * font.Stretch(japanese);
        // What no font has is drawn as the font's own picture of a missing character.
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

}  // namespace

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

}  // namespace platform::gdi
