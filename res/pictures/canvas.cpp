#include "res/pictures/canvas.h"

#include <cstring>
#include <numbers>

namespace pictures {

Shading::Shading(double top, double bottom)
    : m_pPattern(cairo_pattern_create_linear(0, top, 0, bottom), cairo_pattern_destroy) {}

Shading& Shading::Stop(double position, const Colour& colour) {
    cairo_pattern_add_color_stop_rgba(m_pPattern.get(), position, colour.red / 255.0,
                                      colour.green / 255.0, colour.blue / 255.0, colour.opacity);
    return *this;
}

Canvas::Canvas(int width, int height)
    : m_pSurface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height),
                 cairo_surface_destroy),
      m_pCairo(cairo_create(m_pSurface.get()), cairo_destroy) {
    cairo_set_antialias(cairo(), CAIRO_ANTIALIAS_BEST);
}

void Canvas::SetSource(const Colour& colour) {
    cairo_set_source_rgba(cairo(), colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0,
                          colour.opacity);
}

void Canvas::SetSource(const Shading& shading) {
    cairo_set_source(cairo(), shading.pattern());
}

void Canvas::RoundedRectangle(const Rectangle& rectangle, double radius) {
    constexpr double kQuarter = std::numbers::pi / 2;
    const double left = rectangle.x + radius;
    const double top = rectangle.y + radius;
    const double right = rectangle.x + rectangle.width - radius;
    const double bottom = rectangle.y + rectangle.height - radius;
    cairo_new_sub_path(cairo());
    cairo_arc(cairo(), right, top, radius, -kQuarter, 0);
    cairo_arc(cairo(), right, bottom, radius, 0, kQuarter);
    cairo_arc(cairo(), left, bottom, radius, kQuarter, 2 * kQuarter);
    cairo_arc(cairo(), left, top, radius, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cairo());
}

void Canvas::Fill() {
    cairo_fill(cairo());
}

void Canvas::Stroke(double line_width) {
    cairo_set_line_width(cairo(), line_width);
    cairo_stroke(cairo());
}

Raster Canvas::Finish() {
    cairo_surface_flush(m_pSurface.get());
    Raster raster(cairo_image_surface_get_width(m_pSurface.get()),
                  cairo_image_surface_get_height(m_pSurface.get()));
    const unsigned char* row = cairo_image_surface_get_data(m_pSurface.get());
    const int stride = cairo_image_surface_get_stride(m_pSurface.get());
    for (int y = 0; y < raster.height; ++y, row += stride)
        std::memcpy(&raster.At(0, y), row, static_cast<std::size_t>(raster.width) * 4);
    return raster;
}

}  // namespace pictures
