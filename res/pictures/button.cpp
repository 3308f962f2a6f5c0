#include "res/pictures/canvas.h"
#include "res/pictures/designs.h"

namespace pictures {

namespace {

constexpr double kRadius = 9;
constexpr Colour kBlack{0, 0, 0};
constexpr Colour kGrey{89, 87, 86};
constexpr Colour kMiddleGrey{43, 42, 41};
constexpr Colour kGold{184, 131, 12};

Rectangle Frame(int index) {
    return {0, static_cast<double>(index) * kButtonHeight, kButtonWidth, kButtonHeight};
}

void DrawNormal(Canvas& canvas, const Rectangle& frame) {
    const double bottom = frame.y + frame.height;
    canvas.RoundedRectangle(frame, kRadius);
    canvas.SetSource(
        Shading(frame.y, bottom).Stop(0, kGrey).Stop(0.5, kMiddleGrey).Stop(1, kBlack));
    canvas.Fill();

    // A rim separates the lower edge from a black screen.
    canvas.RoundedRectangle(frame.Inset(0.5), kRadius - 0.5);
    canvas.SetSource(Shading(frame.y, bottom)
                         .Stop(0, {255, 252, 250, 0.04})
                         .Stop(0.5, {255, 252, 250, 0.12})
                         .Stop(1, {255, 252, 250, 0.17}));
    canvas.Stroke(1);
    // A highlight from above, just inside the rim.
    canvas.RoundedRectangle(frame.Inset(1.5), kRadius - 1.5);
    canvas.SetSource(
        Shading(frame.y, frame.y + 14).Stop(0, {255, 252, 250, 0.14}).Stop(1, {255, 252, 250, 0}));
    canvas.Stroke(1);
}

void DrawPressed(Canvas& canvas, const Rectangle& frame) {
    Colour glow = kGold;
    glow.opacity = 0.28;
    canvas.RoundedRectangle(frame.Inset(1.5), kRadius - 1.5);
    canvas.SetSource(glow);
    canvas.Stroke(1);
    canvas.RoundedRectangle(frame.Inset(0.5), kRadius - 0.5);
    canvas.SetSource(kGold);
    canvas.Stroke(1);
}

}  // namespace

Raster DrawButtonStrip() {
    Canvas canvas(kButtonWidth, 2 * kButtonHeight);
    canvas.SetSource(kBlack);
    cairo_paint(canvas.cairo());
    DrawNormal(canvas, Frame(0));
    DrawPressed(canvas, Frame(1));
    return canvas.Finish();
}

}  // namespace pictures
