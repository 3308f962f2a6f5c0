#include "platform/gdi/font_library.h"

#include FT_ADVANCES_H
#include FT_TRUETYPE_TABLES_H

namespace platform::gdi {

FontFile::~FontFile() {
    if (face_)
        FT_Done_Face(face_);
}

bool FontFile::Open(FT_Library library, const std::string& path) {
    if (FT_New_Face(library, path.c_str(), 0, &face_) != 0)
        return false;
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face_, FT_SFNT_OS2));
    if (!os2 || !FT_IS_SCALABLE(face_) || os2->xAvgCharWidth <= 0)
        return false;
    average_width_ = os2->xAvgCharWidth;
    ascent_ = os2->usWinAscent;
    descent_ = os2->usWinDescent;
    return FT_Select_Charmap(face_, FT_ENCODING_UNICODE) == 0;
}

unsigned FontFile::GlyphOf(wchar_t character) const {
    return FT_Get_Char_Index(face_, static_cast<FT_ULong>(character));
}

int FontFile::AdvanceOf(unsigned glyph) const {
    FT_Fixed advance = 0;
    if (FT_Get_Advance(face_, glyph, FT_LOAD_NO_SCALE, &advance) != 0)
        return 0;
    return static_cast<int>(advance);
}

FT_Outline* FontFile::OutlineOf(unsigned glyph) const {
    if (FT_Load_Glyph(face_, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0 ||
        face_->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return nullptr;
    return &face_->glyph->outline;
}

FontLibrary::~FontLibrary() {
    files_.clear();
    if (library_)
        FT_Done_FreeType(library_);
}

bool FontLibrary::Open(const std::filesystem::path& directory, std::string& problem) {
    std::map<Typeface, std::filesystem::path> paths;
    if (!FindFontFiles(directory, paths, problem))
        return false;
    if (FT_Init_FreeType(&library_) != 0) {
        problem = "FreeType does not start";
        return false;
    }
    for (const auto& [typeface, path] : paths) {
        auto file = std::make_unique<FontFile>();
        if (!file->Open(library_, path.string())) {
            problem = "the font file " + path.string() + " cannot be used";
            return false;
        }
        files_[typeface] = std::move(file);
    }
    return true;
}

}  // namespace platform::gdi
