#include "unit/workbench/panel_canvas.h"

#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

namespace unit {
namespace {

// ImGui keeps its state in a context of the process, which must be there before anything of it.
SDL_Renderer* MakeContext(const DesktopWindow& window) {
    ImGui::CreateContext();
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    io.LogFilename = nullptr;
    ApplyStyle(window.scale());
    ImGui_ImplSDL2_InitForSDLRenderer(window.window());
    return window.renderer();
}

}  // namespace

PanelCanvas::PanelCanvas(const DesktopWindow& window)
    : window_(window), triangles_(MakeContext(window)) {}

PanelCanvas::~PanelCanvas() {
    ImGui_ImplSDL2_Shutdown();
    ImGui::DestroyContext();
}

void PanelCanvas::Take(const SDL_Event& event) {
    ImGui_ImplSDL2_ProcessEvent(&event);
    mouse_.Take(event);
}

void PanelCanvas::Fit() {
    if (const float density = window_.density(); density != density_) {
        density_ = density;
        std::string problem;  // the platform has found the same files at its start
        LoadFonts(window_.scale(), density, fonts_, problem);
        triangles_.LoadFonts();
    }
    SDL_Point pixels{};
    SDL_GetRendererOutputSize(window_.renderer(), &pixels.x, &pixels.y);
    if (texture_ && pixels.x == pixels_.x && pixels.y == pixels_.y)
        return;
    pixels_ = pixels;
    texture_.reset(SDL_CreateTexture(window_.renderer(), SDL_PIXELFORMAT_ARGB8888,
                                     SDL_TEXTUREACCESS_TARGET, pixels.x, pixels.y));
}

void PanelCanvas::BeginFrame() {
    Fit();
    ImGui_ImplSDL2_NewFrame();
    ImGui::GetIO().DisplayFramebufferScale = {density_, density_};
    mouse_.Give(ImGui::GetIO());
    ImGui::NewFrame();
}

void PanelCanvas::Follow(const std::function<void(const Fonts&)>& draw) {
    BeginFrame();
    draw(fonts_);
    ImGui::EndFrame();
}

void PanelCanvas::Redraw(const std::function<void(const Fonts&)>& draw) {
    BeginFrame();
    draw(fonts_);
    ImGui::Render();
    SDL_SetRenderTarget(window_.renderer(), texture_.get());
    // Where nothing is drawn, the background, and the unit's screen shines through.
    SetDrawColor(window_.renderer(), color::kBackground, 0);
    SDL_RenderClear(window_.renderer());
    triangles_.Draw(*ImGui::GetDrawData());
    SDL_SetRenderTarget(window_.renderer(), nullptr);
}

void PanelCanvas::ShowAround(const SDL_Rect& screen) const {
    const int right = screen.x + screen.w;
    const int bottom = screen.y + screen.h;
    const SDL_Rect around[] = {{0, 0, pixels_.x, screen.y},
                               {0, bottom, pixels_.x, pixels_.y - bottom},
                               {0, screen.y, screen.x, screen.h},
                               {right, screen.y, pixels_.x - right, screen.h}};
    SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_NONE);
    for (const SDL_Rect& part : around)
        if (part.w > 0 && part.h > 0)
            SDL_RenderCopy(window_.renderer(), texture_.get(), &part, &part);
}

void PanelCanvas::ShowOver(const SDL_Rect& screen) const {
    if (!Covers(screen))
        return;
    SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_BLEND);
    SDL_RenderCopy(window_.renderer(), texture_.get(), &screen, &screen);
}

bool PanelCanvas::Covers(const SDL_Rect& screen) const {
    const ImDrawData& data = *ImGui::GetDrawData();
    for (int list = 0; list < data.CmdListsCount; ++list)
        for (const ImDrawCmd& command : data.CmdLists[list]->CmdBuffer) {
            const ImVec4& clip = command.ClipRect;
            const auto pixel = [this](float units) { return static_cast<int>(units * density_); };
            if (command.ElemCount > 0 && pixel(clip.x) < screen.x + screen.w &&
                pixel(clip.z) > screen.x && pixel(clip.y) < screen.y + screen.h &&
                pixel(clip.w) > screen.y)
                return true;
        }
    return false;
}

}  // namespace unit
