#include "platform/gdi/text_font.h"

#include <cmath>

namespace platform::gdi {

TextFont::TextFont(const FontKey& key, const FontLibrary& library)
    : key_(key), library_(library), description_(pango_font_description_new()) {
    PangoFontDescription* const description = description_.get();
    pango_font_description_set_family_static(description,
                                             key.monospaced ? kMonoFamily : kSansFamily);
    pango_font_description_set_weight(description,
                                      key.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    const FontDesign design = DesignOf(library.Load(description).get());
    if (key.height > 0) {
        height_ = key.height;
        em_height_ = key.height / design.cell();
    } else {
        em_height_ = -key.height;
        height_ = static_cast<int>(std::lround(em_height_ * design.cell()));
    }
    ascent_ = static_cast<int>(std::lround(height_ * design.ascent / design.cell()));
    if (key.width != 0) {
        latin_stretch_ = key.width / (em_height_ * design.average_width);
        japanese_stretch_ = 2 * key.width / em_height_;
    }
    pango_font_description_set_absolute_size(description, em_height_ * PANGO_SCALE);
}

double TextFont::StretchedAdvance(double advance, bool japanese) const {
    const double stretched = advance * HorizontalScale(japanese);
    if (!japanese || advance == 0)
        return stretched;
    // Whole pixels, so that equal characters look equal.
    return std::round(stretched) + (key_.bold ? 1 : 0);
}

}  // namespace platform::gdi
