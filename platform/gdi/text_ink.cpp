#include "platform/gdi/text_ink.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "platform/gdi/rectangle.h"

namespace platform::gdi {
namespace {

// How much of its em a glyph grows when it is made bold.
constexpr double kBoldenSideways = 1.0 / 20;
constexpr double kBoldenUpwards = 1.0 / 40;

// Cairo draws on nothing wider; no screen shows as much.
constexpr int kWidestDrawing = 16384;

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct DestroyCairo {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using OwnedSurface = std::unique_ptr<cairo_surface_t, DestroySurface>;
using OwnedCairo = std::unique_ptr<cairo_t, DestroyCairo>;

// The path just drawn has its left edge where it was and grows to the right.
void Bolden(cairo_t* cairo, const TextFont& font) {
    cairo_scale(cairo, font.em_width(true) * kBoldenSideways, font.em_height() * kBoldenUpwards);
    cairo_set_line_width(cairo, 1);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cairo);
}

void DrawRun(cairo_t* cairo, const TextFont& font, const GlyphRun& run) {
    const bool bolden = run.japanese && font.key().bold;
    const double stretch = font.Stretch(run.japanese);
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

}  // namespace

Ink DrawInk(const TextFont& font, const ShapedText& text) {
    // Room for what sticks out of the cells.
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

}  // namespace platform::gdi
