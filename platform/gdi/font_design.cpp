#include "platform/gdi/font_design.h"

#include <hb.h>

namespace platform::gdi {
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
