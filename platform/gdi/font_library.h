#pragma once

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <filesystem>
#include <memory>
#include <string>

namespace platform::gdi {

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unreference>;

// The platform's font files as Pango sees them: under a separate font configuration, so that no
// setting of the machine or a user applies.
class FontLibrary {
  public:
    FontLibrary() = default;
    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;
    ~FontLibrary();

    // False, with one line about what is wrong in `problem`. Once for each library, and one library
    // at a time: the font configuration is the process's.
    bool Open(const std::filesystem::path& directory, std::string& problem);

    PangoContext* context() const { return context_.get(); }
    Owned<PangoFont> Load(const PangoFontDescription* description) const;
    // Whether a font is the Japanese one.
    bool IsJapanese(PangoFont* font) const;

  private:
    bool configured_ = false;
    std::filesystem::path japanese_file_;
    Owned<PangoFontMap> map_;
    Owned<PangoContext> context_;
};

// Measures of a font's OS/2 table, as fractions of the em. The API's text metrics derive from them.
struct FontDesign {
    double average_width;
    double ascent;
    double descent;

    double cell() const { return ascent + descent; }
};

FontDesign DesignOf(PangoFont* font);

inline constexpr const char* kSansFamily = "Liberation Sans";
inline constexpr const char* kMonoFamily = "Liberation Mono";
inline constexpr const char* kJapaneseFamily = "IPAGothic";

}  // namespace platform::gdi
