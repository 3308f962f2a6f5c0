#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <map>
#include <memory>
#include <string>

#include "platform/gdi/font_files.h"

namespace platform::gdi {

// One open font file. Figures are in its own units.
class FontFile {
  public:
    FontFile() = default;
    FontFile(const FontFile&) = delete;
    FontFile& operator=(const FontFile&) = delete;
    ~FontFile();

    bool Open(FT_Library library, const std::string& path);

    // 0 when the font has no glyph for the character.
    unsigned GlyphOf(wchar_t character) const;
    int AdvanceOf(unsigned glyph) const;
    // The outline of a glyph, the caller's to transform until the next call; null without one.
    FT_Outline* OutlineOf(unsigned glyph) const;

    int units_per_em() const { return face_->units_per_EM; }
    // Of the font's OS/2 table, as the API's text metrics use them.
    int average_width() const { return average_width_; }
    int ascent() const { return ascent_; }
    int descent() const { return descent_; }

  private:
    FT_Face face_ = nullptr;
    int average_width_ = 0;
    int ascent_ = 0;
    int descent_ = 0;
};

// All the platform's font files, open.
class FontLibrary {
  public:
    FontLibrary() = default;
    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;
    ~FontLibrary();

    // False, with one line about what is wrong in `problem`.
    bool Open(const std::filesystem::path& directory, std::string& problem);

    const FontFile& File(Typeface typeface) const { return *files_.at(typeface); }
    FT_Library handle() const { return library_; }

  private:
    FT_Library library_ = nullptr;
    std::map<Typeface, std::unique_ptr<FontFile>> files_;
};

}  // namespace platform::gdi
