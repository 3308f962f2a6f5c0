#include "unit/workbench/triangle_renderer.h"

#include <cstddef>

namespace unit {

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

}  // namespace unit
