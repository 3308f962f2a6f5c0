#include "unit/workbench/panel_canvas.h"

#include <backends/imgui_impl_sdl.h>

#include <algorithm>
#include <cfloat>
#include <cstddef>

namespace unit {
namespace {

// ImGui needs its context, which is global, before any other call.
SDL_Renderer* MakeContext(const DesktopWindow& window, Theme theme) {
    ImGui::CreateContext();
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    io.LogFilename = nullptr;
    io.ConfigFlags |= ImGuiConfigFlags_NavEnableKeyboard;
    ApplyStyle(theme, window.scale());
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

void TriangleRenderer::Collect(const ImDrawList& list, const ImDrawCmd& command,
                               const ImVec4& box) {
    vertices_.clear();
    indices_.clear();
    places_.assign(static_cast<std::size_t>(list.VtxBuffer.Size), kNone);
    const ImDrawVert* const vertices = list.VtxBuffer.Data + command.VtxOffset;
    const ImDrawIdx* const indices = list.IdxBuffer.Data + command.IdxOffset;
    for (unsigned first = 0; first + 2 < command.ElemCount; first += 3) {
        const ImVec2& a = vertices[indices[first]].pos;
        const ImVec2& b = vertices[indices[first + 1]].pos;
        const ImVec2& c = vertices[indices[first + 2]].pos;
        if (std::max({a.x, b.x, c.x}) < box.x || std::min({a.x, b.x, c.x}) > box.z ||
            std::max({a.y, b.y, c.y}) < box.y || std::min({a.y, b.y, c.y}) > box.w)
            continue;
        for (unsigned corner = first; corner < first + 3; ++corner) {
            int& place = places_[indices[corner]];
            if (place == kNone) {
                place = static_cast<int>(vertices_.size());
                vertices_.push_back(vertices[indices[corner]]);
            }
            indices_.push_back(place);
        }
    }
}

void TriangleRenderer::Draw(const ImDrawData& data, const SDL_Rect& part) {
    const ImVec2 density = data.FramebufferScale;
    const auto units = [](int pixels, float per_unit) {
        return static_cast<float>(pixels) / per_unit;
    };
    const ImVec4 box = {units(part.x - 1, density.x), units(part.y - 1, density.y),
                        units(part.x + part.w + 1, density.x),
                        units(part.y + part.h + 1, density.y)};
    for (int index = 0; index < data.CmdListsCount; ++index) {
        const ImDrawList& list = *data.CmdLists[index];
        for (const ImDrawCmd& command : list.CmdBuffer) {
            const ImVec4& clip = command.ClipRect;
            SDL_Rect pixels{static_cast<int>(clip.x * density.x),
                            static_cast<int>(clip.y * density.y),
                            static_cast<int>((clip.z - clip.x) * density.x),
                            static_cast<int>((clip.w - clip.y) * density.y)};
            if (!SDL_IntersectRect(&pixels, &part, &pixels))
                continue;
            Collect(list, command, box);
            if (indices_.empty())
                continue;
            SDL_RenderSetClipRect(renderer_, &pixels);
            for (ImDrawVert& vertex : vertices_)
                vertex.pos = {vertex.pos.x * density.x, vertex.pos.y * density.y};
            SDL_RenderGeometryRaw(renderer_, static_cast<SDL_Texture*>(command.GetTexID()),
                                  &vertices_.front().pos.x, sizeof(ImDrawVert),
                                  reinterpret_cast<const SDL_Color*>(&vertices_.front().col),
                                  sizeof(ImDrawVert), &vertices_.front().uv.x, sizeof(ImDrawVert),
                                  static_cast<int>(vertices_.size()), indices_.data(),
                                  static_cast<int>(indices_.size()), sizeof(int));
        }
    }
    SDL_RenderSetClipRect(renderer_, nullptr);
}

PanelCanvas::PanelCanvas(const DesktopWindow& window, Theme theme)
    : window_(window), triangles_(MakeContext(window, theme)) {}

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
        changed_.Forget();
    }
    const SDL_Point pixels = window_.pixels();
    if (texture_ && pixels.x == pixels_.x && pixels.y == pixels_.y)
        return;
    pixels_ = pixels;
    changed_.Forget();
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

std::vector<SDL_Rect> PanelCanvas::Redraw(const std::function<void(const Fonts&)>& draw) {
    BeginFrame();
    draw(fonts_);
    ImGui::Render();
    const ImDrawData& data = *ImGui::GetDrawData();
    std::vector<SDL_Rect> parts = changed_.Find(data, pixels_);
    SDL_Renderer* const renderer = window_.renderer();
    SDL_SetRenderTarget(renderer, texture_.get());
    for (const SDL_Rect& part : parts) {
        // Transparent where nothing is drawn, so that the unit's screen stays visible.
        SetDrawColor(renderer, CurrentPalette().background, 0);
        SDL_RenderFillRect(renderer, &part);
        triangles_.Draw(data, part);
    }
    SDL_SetRenderTarget(renderer, nullptr);
    return parts;
}

void PanelCanvas::SetTheme(Theme theme) {
    ApplyStyle(theme, window_.scale());
    changed_.Forget();
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
