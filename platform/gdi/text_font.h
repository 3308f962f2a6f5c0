#pragma once

#include <windows.h>

#include <memory>
#include <tuple>

#include "platform/gdi/font_library.h"

namespace platform::gdi {

// What of a LOGFONTW tells one font from another. Never 0 is `height`, negative for the height of
// the characters instead of the cell; a width of 0 stands for natural proportions.
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

// Two font files as one font of a certain size: the Latin one, and the Japanese one for what the
// first does not have. Both stand on one base line and have the same height; a given width
// stretches each of them sideways. A full-width character is twice as wide as the width, and one
// pixel more when it is bold, which the Japanese file has no design of its own for.
class TextFont {
  public:
    TextFont(const FontKey& key, const FontLibrary& library);

    const FontKey& key() const { return key_; }
    const FontLibrary& library() const { return library_; }
    // Of the cell, which is also the distance of two lines.
    int height() const { return height_; }
    int ascent() const { return ascent_; }

    // What to shape text with, before it is stretched.
    const PangoFontDescription* description() const { return description_.get(); }
    // In pixels.
    double em_height() const { return em_height_; }
    double em_width(bool japanese) const { return em_height_ * Stretch(japanese); }
    double Stretch(bool japanese) const { return japanese ? japanese_stretch_ : latin_stretch_; }
    // The pixels from one character to the next, of those before stretching.
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

// The font a description asks for, made once; null, with the last error set, when it cannot be had:
// an escapement, italics, lines under or through the text, a size that no screen shows, or a
// missing font file. With the GDI lock held.
std::shared_ptr<const TextFont> FindTextFont(const LOGFONTW& description);

}  // namespace platform::gdi
