#pragma once

#include <windows.h>

#include <memory>
#include <tuple>

#include "platform/gdi/font_library.h"

namespace platform::gdi {

// The values of a LOGFONTW that distinguish fonts. `height` is never 0; it is negative for the
// height of the characters instead of the cell. A `width` of 0 means natural proportions.
struct FontKey {
    bool monospaced = false;
    bool bold = false;
    int height = 0;
    int width = 0;

    bool operator<(const FontKey& other) const {
        const auto fields = [](const FontKey& key) {
            return std::tie(key.monospaced, key.bold, key.height, key.width);
        };
        return fields(*this) < fields(other);
    }
};

// Two font files as one font of a certain size: the Latin file, and the Japanese file for
// characters that the first does not have. Both share a base line and a height; a given width
// stretches each of them horizontally. A full-width character is twice as wide as `width`, and one
// pixel wider in bold, for which the Japanese file has no design.
class TextFont {
  public:
    TextFont(const FontKey& key, const FontLibrary& library);

    const FontKey& key() const { return key_; }
    const FontLibrary& library() const { return library_; }
    // Of the cell, which is also the line spacing.
    int height() const { return height_; }
    int ascent() const { return ascent_; }

    // For shaping text before it is stretched.
    const PangoFontDescription* description() const { return description_.get(); }
    // In pixels.
    double em_height() const { return em_height_; }
    double em_width(bool japanese) const { return em_height_ * HorizontalScale(japanese); }
    double HorizontalScale(bool japanese) const {
        return japanese ? japanese_stretch_ : latin_stretch_;
    }
    // The stretched pixels from one character to the next.
    double StretchedAdvance(double advance, bool japanese) const;

  private:
    struct FreeDescription {
        void operator()(PangoFontDescription* it) const { pango_font_description_free(it); }
    };

    FontKey key_;
    const FontLibrary& library_;
    std::unique_ptr<PangoFontDescription, FreeDescription> description_;
    int height_;
    int ascent_;
    double em_height_;
    double latin_stretch_ = 1;
    double japanese_stretch_ = 1;
};

// The font of a description, created once; null, with the last error set, for what is not supported
// (an escapement, italics, underline, strikeout, an absurd size) or when a font file is missing.
// With the GDI lock held.
std::shared_ptr<const TextFont> FindTextFont(const LOGFONTW& description);

}  // namespace platform::gdi
