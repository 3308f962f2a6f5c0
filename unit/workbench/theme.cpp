#include "unit/workbench/theme.h"

#include <filesystem>
#include <map>

#include "platform/gdi/font_files.h"

namespace unit {
namespace {

using platform::gdi::Typeface;

constexpr float kTextSize = 15;
constexpr float kMonoSize = 14;
constexpr float kJapaneseShrink = 0.95F;

class FontLoader {
  public:
    FontLoader(std::map<Typeface, std::filesystem::path> files, float scale)
        : files_(std::move(files)), scale_(scale) {}

    ImFont* Load(Typeface typeface, float size, bool japanese) {
        ImFontAtlas& atlas = *ImGui::GetIO().Fonts;
        ImFontConfig config;
        config.OversampleH = 1;
        config.PixelSnapH = true;
        ImFont* const font =
            atlas.AddFontFromFileTTF(files_[typeface].c_str(), size * scale_, &config, kLatin);
        if (!japanese)
            return font;
        config.MergeMode = true;
        atlas.AddFontFromFileTTF(files_[Typeface::kJapanese].c_str(),
                                 size * scale_ * kJapaneseShrink, &config,
                                 atlas.GetGlyphRangesJapanese());
        return font;
    }

  private:
    // Latin letters, punctuation and arrows.
    static constexpr ImWchar kLatin[] = {0x0020, 0x00FF, 0x2010, 0x205E, 0x2190, 0x2193, 0};

    std::map<Typeface, std::filesystem::path> files_;
    const float scale_;
};

const Palette kDarkPalette{
    .text = {0.84F, 0.86F, 0.89F, 1},
    .dim = {0.60F, 0.64F, 0.70F, 1},
    .good = {0.42F, 0.77F, 0.47F, 1},
    .warning = {0.92F, 0.68F, 0.30F, 1},
    .bad = {0.95F, 0.45F, 0.42F, 1},
    .accent = {0.38F, 0.66F, 0.95F, 1},
    .background = {0.075F, 0.085F, 0.105F, 1},
    .panel = {0.105F, 0.120F, 0.145F, 1},
    .bezel = {0.20F, 0.22F, 0.26F, 1},
    .fill = {0.16F, 0.36F, 0.60F, 1},
    .message = {0.35F, 0.24F, 0.08F, 1},
    .message_text = {1, 0.86F, 0.62F, 1},
    .light = false,
};
const Palette kLightPalette{
    .text = {0.11F, 0.13F, 0.16F, 1},
    .dim = {0.36F, 0.40F, 0.46F, 1},
    .good = {0.06F, 0.43F, 0.15F, 1},
    .warning = {0.58F, 0.34F, 0.00F, 1},
    .bad = {0.74F, 0.12F, 0.10F, 1},
    .accent = {0.05F, 0.37F, 0.72F, 1},
    .background = {0.84F, 0.86F, 0.88F, 1},
    .panel = {0.95F, 0.96F, 0.97F, 1},
    .bezel = {0.55F, 0.58F, 0.62F, 1},
    .fill = {0.55F, 0.76F, 0.97F, 1},
    .message = {1, 0.91F, 0.72F, 1},
    .message_text = {0.36F, 0.20F, 0.00F, 1},
    .light = true,
};

const Palette* g_palette = &kDarkPalette;

// A grey; in the light theme as far below white as it is above black in the dark one.
ImVec4 Shade(float value, float alpha = 1) {
    if (g_palette->light)
        return {1.04F - value, 1.05F - value, 1.07F - value, alpha};
    return {value * 0.92F, value, value * 1.16F, alpha};
}

void SetColors(ImVec4* colors) {
    const ImVec4 accent = color::Accent();
    const auto tint = [&](float alpha) { return ImVec4{accent.x, accent.y, accent.z, alpha}; };
    colors[ImGuiCol_Text] = color::Text();
    colors[ImGuiCol_TextDisabled] = color::Dim();
    colors[ImGuiCol_WindowBg] = g_palette->panel;
    colors[ImGuiCol_ChildBg] = {0, 0, 0, 0};
    colors[ImGuiCol_PopupBg] = Shade(0.15F, 0.98F);
    colors[ImGuiCol_TitleBg] = colors[ImGuiCol_TitleBgActive] = g_palette->fill;
    colors[ImGuiCol_Border] = Shade(0.20F);
    colors[ImGuiCol_FrameBg] = Shade(0.165F);
    colors[ImGuiCol_FrameBgHovered] = Shade(0.21F);
    colors[ImGuiCol_FrameBgActive] = Shade(0.25F);
    colors[ImGuiCol_CheckMark] = accent;
    colors[ImGuiCol_SliderGrab] = g_palette->fill;
    colors[ImGuiCol_SliderGrabActive] = g_palette->fill;
    colors[ImGuiCol_Button] = Shade(0.21F);
    colors[ImGuiCol_ButtonHovered] = tint(0.45F);
    colors[ImGuiCol_ButtonActive] = tint(0.65F);
    colors[ImGuiCol_Header] = Shade(0.155F);
    colors[ImGuiCol_HeaderHovered] = Shade(0.20F);
    colors[ImGuiCol_HeaderActive] = Shade(0.24F);
    colors[ImGuiCol_Separator] = Shade(0.20F);
    colors[ImGuiCol_SeparatorHovered] = tint(0.6F);
    colors[ImGuiCol_SeparatorActive] = accent;
    colors[ImGuiCol_Tab] = Shade(0.12F);
    colors[ImGuiCol_TabHovered] = tint(0.35F);
    colors[ImGuiCol_TabActive] = Shade(0.22F);
    colors[ImGuiCol_TabUnfocused] = colors[ImGuiCol_Tab];
    colors[ImGuiCol_TabUnfocusedActive] = colors[ImGuiCol_TabActive];
    colors[ImGuiCol_TableHeaderBg] = Shade(0.145F);
    colors[ImGuiCol_TableRowBgAlt] =
        g_palette->light ? ImVec4(0, 0, 0, 0.03F) : ImVec4(1, 1, 1, 0.02F);
    colors[ImGuiCol_TableBorderLight] = Shade(0.17F);
    colors[ImGuiCol_ScrollbarBg] = {0, 0, 0, 0};
    colors[ImGuiCol_ScrollbarGrab] = Shade(0.25F);
    colors[ImGuiCol_ScrollbarGrabHovered] = Shade(0.33F);
    colors[ImGuiCol_ScrollbarGrabActive] = Shade(0.40F);
    colors[ImGuiCol_PlotLines] = accent;
    colors[ImGuiCol_PlotHistogram] = g_palette->fill;
    colors[ImGuiCol_TextSelectedBg] = tint(0.35F);
    colors[ImGuiCol_NavHighlight] = accent;
}

}  // namespace

const Palette& CurrentPalette() {
    return *g_palette;
}

void SetDrawColor(SDL_Renderer* renderer, const ImVec4& tone, Uint8 alpha) {
    const auto channel = [](float value) { return static_cast<Uint8>(value * 255); };
    SDL_SetRenderDrawColor(renderer, channel(tone.x), channel(tone.y), channel(tone.z), alpha);
}

bool LoadFonts(float scale, float density, Fonts& fonts, std::string& problem) {
    std::map<Typeface, std::filesystem::path> files;
    if (!platform::gdi::FindFontFiles(platform::gdi::kFontDirectory, files, problem))
        return false;
    ImGuiIO& io = ImGui::GetIO();
    io.Fonts->Clear();
    FontLoader loader(std::move(files), scale * density);
    fonts.text = loader.Load(Typeface::kSans, kTextSize, true);
    fonts.heading = loader.Load(Typeface::kSansBold, kTextSize, false);
    fonts.mono = loader.Load(Typeface::kMono, kMonoSize, true);
    io.FontGlobalScale = 1 / density;
    return true;
}

void ApplyStyle(Theme theme, float scale) {
    g_palette = theme == Theme::kLight ? &kLightPalette : &kDarkPalette;
    ImGuiStyle style;
    style.WindowPadding = {12, 10};
    style.FramePadding = {9, 4};
    style.ItemSpacing = {8, 6};
    style.ItemInnerSpacing = {6, 4};
    style.CellPadding = {6, 2};
    style.ScrollbarSize = 12;
    style.GrabMinSize = 10;
    style.WindowBorderSize = 0;
    style.FrameRounding = 4;
    style.PopupRounding = 4;
    style.ScrollbarRounding = 6;
    style.GrabRounding = 4;
    style.TabRounding = 4;
    // The software renderer draws textured lines with gaps.
    style.AntiAliasedLinesUseTex = false;
    SetColors(style.Colors);
    style.ScaleAllSizes(scale);
    ImGui::GetStyle() = style;
}

}  // namespace unit
