#include "platform/gdi/font_library.h"

#include <hb.h>
#include <pango/pangofc-font.h>
#include <pango/pangofc-fontmap.h>
#include <map>

#include "platform/gdi/font_files.h"

namespace platform::gdi {
namespace {

// Glyphs as they are designed, in shades of grey; each family is followed by the Japanese one.
constexpr char kConfiguration[] = R"(<?xml version="1.0"?>
<fontconfig>
  <match target="pattern">
    <edit name="family" mode="append_last" binding="same"><string>IPAGothic</string></edit>
  </match>
  <match target="font">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="hinting" mode="assign"><bool>false</bool></edit>
    <edit name="hintstyle" mode="assign"><const>hintnone</const></edit>
    <edit name="autohint" mode="assign"><bool>false</bool></edit>
    <edit name="embeddedbitmap" mode="assign"><bool>false</bool></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
    <edit name="lcdfilter" mode="assign"><const>lcdnone</const></edit>
  </match>
</fontconfig>
)";

// Makes the configuration the process's current one: Pango initialises the current one on a thread
// of its own, and would otherwise read the machine's.
bool Configure(const std::map<Typeface, std::filesystem::path>& files, std::string& problem) {
    FcConfig* const config = FcConfigCreate();
    const auto* text = reinterpret_cast<const FcChar8*>(kConfiguration);
    bool ready = config && FcConfigParseAndLoadFromMemory(config, text, FcTrue);
    if (!ready)
        problem = "the font configuration cannot be read";
    for (const auto& [typeface, path] : files) {
        const auto* name = reinterpret_cast<const FcChar8*>(path.c_str());
        if (ready && !FcConfigAppFontAddFile(config, name)) {
            problem = "the font file " + path.string() + " cannot be used";
            ready = false;
        }
    }
    ready = ready && FcConfigSetCurrent(config);
    if (config)
        FcConfigDestroy(config);
    return ready;
}

Owned<PangoContext> MakeContext(PangoFontMap* map) {
    Owned<PangoContext> context(pango_font_map_create_context(map));
    pango_context_set_language(context.get(), pango_language_from_string("ja"));
    pango_context_set_base_dir(context.get(), PANGO_DIRECTION_LTR);
    // Text is stretched after measuring: rounding to pixels comes later.
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    return context;
}

std::filesystem::path FileOf(PangoFont* font) {
    FcChar8* file = nullptr;
    if (!font || FcPatternGetString(pango_fc_font_get_pattern(PANGO_FC_FONT(font)), FC_FILE, 0,
                                    &file) != FcResultMatch)
        return {};
    return reinterpret_cast<const char*>(file);
}

struct Face {
    Typeface typeface;
    const char* description;
};

constexpr Face kFaces[] = {
    {Typeface::kSans, "Liberation Sans"}, {Typeface::kSansBold, "Liberation Sans Bold"},
    {Typeface::kMono, "Liberation Mono"}, {Typeface::kMonoBold, "Liberation Mono Bold"},
    {Typeface::kJapanese, "IPAGothic"},
};

}  // namespace

FontLibrary::~FontLibrary() {
    // Pango does not release the configuration by itself.
    if (map_)
        pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map_.get()), nullptr);
    context_.reset();
    map_.reset();
    if (configured_)
        FcFini();
}

bool FontLibrary::Open(const std::filesystem::path& directory, std::string& problem) {
    std::map<Typeface, std::filesystem::path> files;
    if (!FindFontFiles(directory, files, problem))
        return false;
    configured_ = Configure(files, problem);
    if (!configured_)
        return false;
    japanese_file_ = files.at(Typeface::kJapanese);
    map_.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
    if (!map_) {
        problem = "Pango cannot draw with FreeType";
        return false;
    }
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map_.get()), FcConfigGetCurrent());
    context_ = MakeContext(map_.get());
    for (const Face& face : kFaces) {
        PangoFontDescription* const description =
            pango_font_description_from_string(face.description);
        const std::filesystem::path file = FileOf(Load(description).get());
        pango_font_description_free(description);
        if (file == files.at(face.typeface))
            continue;
        problem =
            "the font file " + files.at(face.typeface).string() + " is not " + face.description;
        return false;
    }
    return true;
}

Owned<PangoFont> FontLibrary::Load(const PangoFontDescription* description) const {
    return Owned<PangoFont>(pango_context_load_font(context_.get(), description));
}

bool FontLibrary::IsJapanese(PangoFont* font) const {
    return FileOf(font) == japanese_file_;
}

namespace {

// Of the OS/2 table; big-endian.
constexpr unsigned kAverageWidthOffset = 2;  // xAvgCharWidth
constexpr unsigned kAscentOffset = 74;       // usWinAscent
constexpr unsigned kDescentOffset = 76;      // usWinDescent

double NumberAt(hb_blob_t* table, unsigned offset) {
    unsigned length = 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(hb_blob_get_data(table, &length));
    return offset + 2 <= length ? bytes[offset] * 256 + bytes[offset + 1] : 0;
}

}  // namespace

FontDesign DesignOf(PangoFont* font) {
    hb_face_t* const face = hb_font_get_face(pango_font_get_hb_font(font));
    hb_blob_t* const table = hb_face_reference_table(face, HB_TAG('O', 'S', '/', '2'));
    const double em = hb_face_get_upem(face);
    const FontDesign design{.average_width = NumberAt(table, kAverageWidthOffset) / em,
                            .ascent = NumberAt(table, kAscentOffset) / em,
                            .descent = NumberAt(table, kDescentOffset) / em};
    hb_blob_destroy(table);
    return design;
}

}  // namespace platform::gdi
