#include "platform/gdi/text_line.h"

#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>

#include "platform/gdi/rectangle.h"

namespace platform::gdi {
namespace {

struct Span {
    int x;
    int y;
    int length;
    std::uint8_t coverage;
};

// FreeType counts rows upwards from the base line.
void CollectSpans(int y, int count, const FT_Span* spans, void* user) {
    auto& collected = *static_cast<std::vector<Span>*>(user);
    for (const FT_Span& span : std::span(spans, std::size_t(count)))
        if (span.coverage != 0)
            collected.push_back({span.x, -1 - y, span.len, span.coverage});
}

}  // namespace

TextLine::TextLine(std::shared_ptr<const TextFont> font, std::wstring text)
    : font_(std::move(font)) {
    double pen = 0;
    bool japanese = false;
    for (const wchar_t character : text) {
        const Glyph glyph = font_->GlyphOf(character);
        // Japanese characters stand on whole pixels, Latin words are spaced more finely.
        if (glyph.japanese && !japanese)
            pen = std::round(pen);
        japanese = glyph.japanese;
        glyphs_.push_back(glyph);
        edges_.push_back(pen);
        pen += glyph.advance;
    }
    edges_.push_back(pen);
}

int TextLine::width() const {
    return static_cast<int>(std::lround(edges_.back()));
}

const Ink& TextLine::ink() const {
    if (!ink_)
        ink_ = Draw();
    return *ink_;
}

Ink TextLine::Draw() const {
    std::vector<Span> spans;
    FT_Raster_Params parameters{};
    parameters.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT;
    parameters.gray_spans = CollectSpans;
    parameters.user = &spans;
    for (std::size_t i = 0; i < glyphs_.size(); ++i) {
        FT_Outline* outline = font_->OutlineOf(glyphs_[i]);
        if (!outline)
            continue;
        FT_Outline_Translate(outline, std::lround(edges_[i] * 64), 0);
        FT_Outline_Render(font_->library(), outline, &parameters);
    }

    Ink ink;
    for (const Span& span : spans)
        ink.box = BoundingBox(ink.box, {span.x, span.y, span.x + span.length, span.y + 1});
    ink.coverage.resize(std::size_t(Width(ink.box)) * std::size_t(Height(ink.box)));
    for (const Span& span : spans) {
        std::uint8_t* row =
            ink.coverage.data() + std::size_t(span.y - ink.box.top) * std::size_t(Width(ink.box));
        for (int x = span.x; x < span.x + span.length; ++x) {
            std::uint8_t& coverage = row[x - ink.box.left];
            coverage = std::max(coverage, span.coverage);
        }
    }
    ink.box = Moved(ink.box, 0, font_->ascent());
    return ink;
}

}  // namespace platform::gdi
