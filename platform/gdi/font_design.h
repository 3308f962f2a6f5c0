#pragma once

#include <pango/pango.h>

namespace platform::gdi {

// What a font's OS/2 table says of all its characters, as shares of the em. The API's text metrics
// are made of these.
struct FontDesign {
    double average_width;
    double ascent;
    double descent;

    double cell() const { return ascent + descent; }
};

FontDesign DesignOf(PangoFont* font);

}  // namespace platform::gdi
