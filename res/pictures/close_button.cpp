#include <numbers>

#include "res/pictures/canvas.h"
#include "res/pictures/designs.h"

namespace pictures {

namespace {

constexpr double kRadius = 6;
constexpr Colour kBlack{0, 0, 0};
constexpr Colour kRed{231, 0, 16};
constexpr Colour kDarkRed{140, 10, 20};
constexpr Colour kWhite{255, 255, 255};

Rectangle Frame(int index) {
    return {0, static_cast<double>(index) * kCloseHeight, kCloseWidth, kCloseHeight};
}

// A ring open at the top and a bar in the opening; its lines are three pixels wide and the bar
// covers whole pixels.
void DrawPowerSymbol(Canvas& canvas, const Rectangle& frame) {
    constexpr double kLineWidth = 3;
    constexpr double kRingRadius = 8.5;
    constexpr double kHalfOpening = 40 * std::numbers::pi / 180;
    constexpr double kUp = -std::numbers::pi / 2;
    const double x = frame.x + frame.width / 2;
    const double y = frame.y + frame.height / 2 + 0.5;

    canvas.SetSource(kWhite);
    cairo_set_line_cap(canvas.cairo(), CAIRO_LINE_CAP_ROUND);
    cairo_new_path(canvas.cairo());
    cairo_arc(canvas.cairo(), x, y, kRingRadius, kUp + kHalfOpening,
              kUp + 2 * std::numbers::pi - kHalfOpening);
    canvas.Stroke(kLineWidth);
    cairo_move_to(canvas.cairo(), x, y - kRingRadius - 1);
    cairo_line_to(canvas.cairo(), x, y - 1.5);
    canvas.Stroke(kLineWidth);
}

void DrawFace(Canvas& canvas, const Rectangle& frame, const Colour& face) {
    canvas.RoundedRectangle(frame, kRadius);
    canvas.SetSource(face);
    canvas.Fill();
}

void DrawNormal(Canvas& canvas, const Rectangle& frame) {
    DrawFace(canvas, frame, kRed);
    canvas.RoundedRectangle(frame.Inset(0.5), kRadius - 0.5);
    canvas.SetSource(Shading(frame.y, frame.y + frame.height)
                         .Stop(0, {255, 255, 255, 0.38})
                         .Stop(0.3, {255, 255, 255, 0.06})
                         .Stop(0.6, {0, 0, 0, 0.06})
                         .Stop(1, {0, 0, 0, 0.38}));
    canvas.Stroke(1);
    DrawPowerSymbol(canvas, frame);
}

void DrawPressed(Canvas& canvas, const Rectangle& frame) {
    DrawFace(canvas, frame, kDarkRed);
    // The upper edge casts a shadow on the pressed face.
    for (const double inset : {0.5, 1.5, 2.5}) {
        canvas.RoundedRectangle(frame.Inset(inset), kRadius - inset);
        canvas.SetSource(Shading(frame.y, frame.y + frame.height / 2)
                             .Stop(0, {0, 0, 0, 0.36 - 0.12 * inset})
                             .Stop(1, {0, 0, 0, 0}));
        canvas.Stroke(1);
    }
    DrawPowerSymbol(canvas, frame);
}

}  // namespace

Raster DrawCloseStrip() {
    Canvas canvas(kCloseWidth, 2 * kCloseHeight);
    canvas.SetSource(kBlack);
    cairo_paint(canvas.cairo());
    DrawNormal(canvas, Frame(0));
    DrawPressed(canvas, Frame(1));
    return canvas.Finish();
}

}  // namespace pictures
