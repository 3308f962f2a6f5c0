#include <numbers>

#include "res/pictures/canvas.h"
#include "res/pictures/designs.h"

namespace pictures {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr Colour kGold{184, 131, 12};
constexpr Colour kBrightGold{232, 186, 70};

// The sizes of one drawing, in pixels.
struct Measures {
    int size;
    double corner;
    double lens;
    double pupil;
    double ring;
    double ring_width;
    double arrow;
};

void FillCircle(Canvas& canvas, double x, double y, double radius, const Colour& colour) {
    cairo_new_path(canvas.cairo());
    cairo_arc(canvas.cairo(), x, y, radius, 0, kTurn);
    canvas.SetSource(colour);
    canvas.Fill();
}

void DrawBody(Canvas& canvas, const Measures& measures) {
    const Rectangle body{0, 0, static_cast<double>(measures.size),
                         static_cast<double>(measures.size)};
    canvas.RoundedRectangle(body, measures.corner);
    // In sixteen colours a shaded face would show bands.
    canvas.SetSource({40, 39, 38});
    canvas.Fill();
    canvas.RoundedRectangle(body.Inset(0.5), measures.corner - 0.5);
    canvas.SetSource(Shading(0, measures.size).Stop(0, {130, 128, 126}).Stop(1, {62, 61, 60}));
    canvas.Stroke(1);
}

// The camera's lens.
void DrawLens(Canvas& canvas, const Measures& measures) {
    const double middle = measures.size / 2.0;
    FillCircle(canvas, middle, middle, measures.lens, {180, 178, 176});
    FillCircle(canvas, middle, middle, measures.lens * 0.8, {0, 0, 0});
    FillCircle(canvas, middle, middle, measures.pupil, {38, 70, 110});
    FillCircle(canvas, middle - measures.pupil * 0.4, middle - measures.pupil * 0.4,
               measures.pupil * 0.42, {255, 255, 255});
}

// An arrow around the lens stands for the update.
void DrawArrow(Canvas& canvas, const Measures& measures) {
    const double middle = measures.size / 2.0;
    // The end is exactly above the lens, so that the arrow's head is aligned with the pixels.
    const double start = 0.98 * kTurn;
    const double end = 1.75 * kTurn;
    canvas.SetSource(Shading(0, measures.size).Stop(0, kBrightGold).Stop(1, kGold));
    cairo_new_path(canvas.cairo());
    cairo_arc(canvas.cairo(), middle, middle, measures.ring, start, end);
    cairo_set_line_cap(canvas.cairo(), CAIRO_LINE_CAP_BUTT);
    canvas.Stroke(measures.ring_width);

    cairo_save(canvas.cairo());
    cairo_translate(canvas.cairo(), middle, middle);
    cairo_rotate(canvas.cairo(), end);
    cairo_move_to(canvas.cairo(), measures.ring - measures.arrow, 0);
    cairo_line_to(canvas.cairo(), measures.ring + measures.arrow, 0);
    cairo_line_to(canvas.cairo(), measures.ring, measures.arrow * 1.4);
    cairo_close_path(canvas.cairo());
    canvas.Fill();
    cairo_restore(canvas.cairo());
}

Raster DrawIcon(const Measures& measures) {
    Canvas canvas(measures.size, measures.size);
    DrawBody(canvas, measures);
    DrawLens(canvas, measures);
    DrawArrow(canvas, measures);
    return canvas.Finish();
}

}  // namespace

Raster DrawLargeIcon() {
    return DrawIcon({.size = 32,
                     .corner = 6,
                     .lens = 7.5,
                     .pupil = 4.5,
                     .ring = 10.75,
                     .ring_width = 2.5,
                     .arrow = 3.4});
}

Raster DrawSmallIcon() {
    return DrawIcon({.size = 16,
                     .corner = 3,
                     .lens = 3.1,
                     .pupil = 2.2,
                     .ring = 5.25,
                     .ring_width = 1.5,
                     .arrow = 2.4});
}

}  // namespace pictures
