#include "platform/gdi/text_font.h"

#include FT_OUTLINE_H

#include <cmath>

namespace platform::gdi {
namespace {

// How much of its em a glyph grows when it is made bold.
constexpr double kBoldenSideways = 1.0 / 20;
constexpr double kBoldenUpwards = 1.0 / 40;

const FontFile& LatinFile(const FontLibrary& library, const FontKey& key) {
    if (key.monospaced)
        return library.File(key.bold ? Typeface::kMonoBold : Typeface::kMono);
    return library.File(key.bold ? Typeface::kSansBold : Typeface::kSans);
}

FT_Pos SixtyFourths(double pixels) {
    return std::lround(pixels * 64);
}

}  // namespace

TextFont::TextFont(const FontKey& key, const FontLibrary& library)
    : key_(key),
      library_(library),
      latin_(LatinFile(library, key)),
      japanese_(library.File(Typeface::kJapanese)) {
    const double cell = latin_.ascent() + latin_.descent();
    if (key.height > 0) {
        height_ = key.height;
        em_height_ = key.height * latin_.units_per_em() / cell;
    } else {
        em_height_ = -key.height;
        height_ = static_cast<int>(std::lround(em_height_ * cell / latin_.units_per_em()));
    }
    ascent_ = static_cast<int>(std::lround(height_ * latin_.ascent() / cell));
    latin_em_width_ = key.width == 0
                          ? em_height_
                          : double(key.width) * latin_.units_per_em() / latin_.average_width();
    japanese_em_width_ = key.width == 0 ? em_height_ : 2.0 * key.width;
}

int TextFont::em() const {
    return static_cast<int>(std::lround(em_height_));
}

int TextFont::average_width() const {
    return static_cast<int>(
        std::lround(latin_em_width_ * latin_.average_width() / latin_.units_per_em()));
}

int TextFont::full_width() const {
    return static_cast<int>(std::lround(japanese_em_width_)) + (key_.bold ? 1 : 0);
}

Glyph TextFont::GlyphOf(wchar_t character) const {
    const unsigned latin = latin_.GlyphOf(character);
    const unsigned japanese = latin == 0 ? japanese_.GlyphOf(character) : 0;
    if (japanese == 0)
        return {latin, false, latin_.AdvanceOf(latin) * latin_em_width_ / latin_.units_per_em()};
    // Whole pixels, so that equal characters look equal.
    const double advance =
        std::round(japanese_.AdvanceOf(japanese) * japanese_em_width_ / japanese_.units_per_em());
    return {japanese, true, advance + (key_.bold ? 1 : 0)};
}

FT_Outline* TextFont::OutlineOf(const Glyph& glyph) const {
    const FontFile& file = glyph.japanese ? japanese_ : latin_;
    FT_Outline* outline = file.OutlineOf(glyph.index);
    if (!outline)
        return nullptr;
    const double em_width = glyph.japanese ? japanese_em_width_ : latin_em_width_;
    const auto scale = [&file](double em) {
        return std::lround(em * 64 / file.units_per_em() * 0x10000);
    };
    const FT_Matrix matrix{scale(em_width), 0, 0, scale(em_height_)};
    FT_Outline_Transform(outline, &matrix);
    if (glyph.japanese && key_.bold) {
        const FT_Pos upwards = SixtyFourths(em_height_ * kBoldenUpwards);
        FT_Outline_EmboldenXY(outline, SixtyFourths(em_width * kBoldenSideways), upwards);
        FT_Outline_Translate(outline, 0, -upwards / 2);
    }
    return outline;
}

}  // namespace platform::gdi
