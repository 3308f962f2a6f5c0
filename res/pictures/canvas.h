#pragma once

#include <cairo.h>

#include <memory>

#include "res/pictures/raster.h"

namespace pictures {

struct Colour {
    int red = 0;
    int green = 0;
    int blue = 0;
    double opacity = 1;
};

struct Rectangle {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    Rectangle Inset(double by) const { return {x + by, y + by, width - 2 * by, height - 2 * by}; }
};

// Vertical shading between two heights.
class Shading {
  public:
    Shading(double top, double bottom);
    // `position` is 0 at the top and 1 at the bottom.
    Shading& Stop(double position, const Colour& colour);

    cairo_pattern_t* pattern() const { return m_pPattern.get(); }

  private:
    std::unique_ptr<cairo_pattern_t, decltype(&cairo_pattern_destroy)> m_pPattern;
};

// A picture to draw on, transparent at first. Drawing is antialiased; whole coordinates are the
// corners of pixels, so that (0.5, 0.5) is the middle of the first one.
class Canvas {
  public:
    Canvas(int width, int height);

    cairo_t* cairo() const { return m_pCairo.get(); }

    void SetSource(const Colour& colour);
    void SetSource(const Shading& shading);
    // Sets the path.
    void RoundedRectangle(const Rectangle& rectangle, double radius);
    void Fill();
    void Stroke(double line_width);

    Raster Finish();

  private:
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> m_pSurface;
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> m_pCairo;
};

}  // namespace pictures
