#pragma once

#include <SDL.h>
#include <imgui.h>

#include <string>

namespace unit {

// The workbench's colours by meaning.
namespace color {
inline const ImVec4 kText{0.84F, 0.86F, 0.89F, 1};
inline const ImVec4 kDim{0.55F, 0.59F, 0.65F, 1};
inline const ImVec4 kGood{0.42F, 0.77F, 0.47F, 1};
inline const ImVec4 kWarning{0.92F, 0.68F, 0.30F, 1};
inline const ImVec4 kBad{0.93F, 0.40F, 0.37F, 1};
inline const ImVec4 kAccent{0.38F, 0.66F, 0.95F, 1};
inline const ImVec4 kBackground{0.075F, 0.085F, 0.105F, 1};
inline const ImVec4 kPanel{0.105F, 0.120F, 0.145F, 1};
inline const ImVec4 kBezel{0.20F, 0.22F, 0.26F, 1};
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

// Sets ImGui's colours and lengths; `scale` multiplies the lengths.
void ApplyStyle(float scale);

}  // namespace unit
