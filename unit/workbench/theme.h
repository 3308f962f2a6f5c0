#pragma once

#include <SDL.h>
#include <imgui.h>

#include <string>

#include "unit/workbench/view_settings.h"

namespace unit {

// A set of colours by meaning.
struct Palette {
    ImVec4 text, dim, good, warning, bad, accent;
    ImVec4 background, panel, bezel;
    // The fill of a progress bar and of a slider's grip, which the text must stay readable on.
    ImVec4 fill;
    // Behind a message to the operator, and its text.
    ImVec4 message, message_text;
    // From the background to the text: a frame's shade is a step between them.
    bool light;
};
const Palette& CurrentPalette();

namespace color {
inline const ImVec4& Text() {
    return CurrentPalette().text;
}
inline const ImVec4& Dim() {
    return CurrentPalette().dim;
}
inline const ImVec4& Good() {
    return CurrentPalette().good;
}
inline const ImVec4& Warning() {
    return CurrentPalette().warning;
}
inline const ImVec4& Bad() {
    return CurrentPalette().bad;
}
inline const ImVec4& Accent() {
    return CurrentPalette().accent;
}
inline const ImVec4 kBlack{0, 0, 0, 1};
}  // namespace color

// Sets SDL's drawing colour.
void SetDrawColor(SDL_Renderer* renderer, const ImVec4& tone, Uint8 alpha = 255);

struct Fonts {
    ImFont* text = nullptr;
    ImFont* heading = nullptr;
    ImFont* mono = nullptr;
};

// Loads the fonts with Japanese glyphs, enlarged by `scale`, for `density` pixels per unit. False,
// with one line in `problem`, when a font file is missing.
bool LoadFonts(float scale, float density, Fonts& fonts, std::string& problem);

// Sets ImGui's colours and lengths, and the current palette; `scale` multiplies the lengths.
void ApplyStyle(Theme theme, float scale);

}  // namespace unit
