#include "unit/workbench/panel_canvas.h"

#include <backends/imgui_impl_sdl.h>

#include <cfloat>
#include <cstddef>

namespace unit {
namespace {

// ImGui needs its context, which is global, before any other call.
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

const ImVec2 MouseState::kNowhere{-FLT_MAX, -FLT_MAX};

void MouseState::Take(const SDL_Event& event) {
    const auto go_to = [this](Sint32 x, Sint32 y) {
        place_ = {static_cast<float>(x), static_cast<float>(y)};
    };
    switch (event.type) {
        case SDL_MOUSEMOTION:
            go_to(event.motion.x, event.motion.y);
            break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            go_to(event.button.x, event.button.y);
            for (std::size_t button = 0; button < kButtons.size(); ++button)
                if (event.button.button == kButtons[button])
                    down_[button] = event.type == SDL_MOUSEBUTTONDOWN;
            break;
        case SDL_WINDOWEVENT:
            if (event.window.event == SDL_WINDOWEVENT_LEAVE && !down_[0])
                place_ = kNowhere;
            break;
        default:
            break;
    }
}

void MouseState::Give(ImGuiIO& io) const {
    io.MousePos = place_;
    for (std::size_t button = 0; button < kButtons.size(); ++button)
        io.MouseDown[button] = down_[button];
}

static_assert(sizeof(ImU32) == sizeof(SDL_Color), "a vertex's colour is red, green, blue, alpha");

TriangleRenderer::TriangleRenderer(SDL_Renderer* renderer) : renderer_(renderer) {
    ImGuiIO& io = ImGui::GetIO();
    io.BackendRendererName = "SDL_RenderGeometry";
    io.BackendFlags |= ImGuiBackendFlags_RendererHasVtxOffset;
}

void TriangleRenderer::LoadFonts() {
    ImFontAtlas& atlas = *ImGui::GetIO().Fonts;
    unsigned char* pixels = nullptr;
    int width = 0;
    int height = 0;
    atlas.GetTexDataAsRGBA32(&pixels, &width, &height);
    fonts_.reset(SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_ABGR8888, SDL_TEXTUREACCESS_STATIC,
                                   width, height));
    SDL_UpdateTexture(fonts_.get(), nullptr, pixels, 4 * width);
    SDL_SetTextureBlendMode(fonts_.get(), SDL_BLENDMODE_BLEND);
    SDL_SetTextureScaleMode(fonts_.get(), SDL_ScaleModeLinear);
    atlas.SetTexID(fonts_.get());
    atlas.ClearTexData();
}

void TriangleRenderer::Draw(const ImDrawData& data) {
    SDL_RenderSetScale(renderer_, data.FramebufferScale.x, data.FramebufferScale.y);
    for (int index = 0; index < data.CmdListsCount; ++index)
        DrawList(*data.CmdLists[index], data);
    SDL_RenderSetClipRect(renderer_, nullptr);
    SDL_RenderSetScale(renderer_, 1, 1);
}

void TriangleRenderer::DrawList(const ImDrawList& list, const ImDrawData& data) {
    for (const ImDrawCmd& command : list.CmdBuffer) {
        const ImVec2 origin = data.DisplayPos;
        const SDL_Rect clip{static_cast<int>(command.ClipRect.x - origin.x),
                            static_cast<int>(command.ClipRect.y - origin.y),
                            static_cast<int>(command.ClipRect.z - command.ClipRect.x),
                            static_cast<int>(command.ClipRect.w - command.ClipRect.y)};
        if (clip.w <= 0 || clip.h <= 0)
            continue;
        SDL_RenderSetClipRect(renderer_, &clip);
        const ImDrawVert* const vertices = list.VtxBuffer.Data + command.VtxOffset;
        SDL_RenderGeometryRaw(renderer_, static_cast<SDL_Texture*>(command.GetTexID()),
                              &vertices->pos.x, sizeof(ImDrawVert),
                              reinterpret_cast<const SDL_Color*>(&vertices->col),
                              sizeof(ImDrawVert), &vertices->uv.x, sizeof(ImDrawVert),
                              list.VtxBuffer.Size - static_cast<int>(command.VtxOffset),
                              list.IdxBuffer.Data + command.IdxOffset,
                              static_cast<int>(command.ElemCount), sizeof(ImDrawIdx));
    }
}

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
        std::string problem;  // cannot happen: the platform found the same files when it started
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

void PanelCanvas::Update(const std::function<void(const Fonts&)>& draw) {
    BeginFrame();
    draw(fonts_);
    ImGui::EndFrame();
}

void PanelCanvas::Redraw(const std::function<void(const Fonts&)>& draw) {
    BeginFrame();
    draw(fonts_);
    ImGui::Render();
    SDL_SetRenderTarget(window_.renderer(), texture_.get());
    // Transparent where nothing is drawn, so that the unit's screen stays visible.
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
