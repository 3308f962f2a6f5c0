#include "unit/workbench/gloss_overlay.h"

#include <imgui.h>

#include <algorithm>
#include <string>

#include "platform/kernel/text.h"
#include "unit/workbench/gloss.h"

namespace unit {
namespace {

// How far from a text's ink the mouse still counts as over it, in pixels of the unit's screen.
constexpr int kReach = 4;
constexpr float kPadding = 4;

Area Place(const RECT& box, const Area& screen) {
    const float factor = screen.width / platform::window::kScreenWidth;
    const auto length = [factor](LONG pixels) { return static_cast<float>(pixels) * factor; };
    return {screen.x + length(box.left), screen.y + length(box.top), length(box.right - box.left),
            length(box.bottom - box.top)};
}

// Over the text, as wide as the text or as the English needs.
void DrawOver(const PanelContext& context, const Area& text, const Area& screen,
              const std::string& english) {
    const float factor = std::max(1.0F, screen.width / platform::window::kScreenWidth);
    const float padding = kPadding * context.scale * factor;
    ImFont* const font = context.fonts.text;
    const float size = font->FontSize * ImGui::GetIO().FontGlobalScale * factor;
    const float most = std::max(1.0F, screen.x + screen.width - text.x - 2 * padding);
    const ImVec2 needed = font->CalcTextSizeA(size, most, most, english.c_str());
    const float height = std::max(text.height, needed.y + 2 * padding);
    const float top = text.y + (text.height - height) / 2;
    const ImVec2 corner = {text.x, top};
    const ImVec2 end = {text.x + std::max(text.width, needed.x + 2 * padding), top + height};
    ImDrawList& list = *ImGui::GetBackgroundDrawList();
    list.AddRectFilled(corner, end, IM_COL32(14, 40, 84, 255), 3 * context.scale);
    list.AddRect(corner, end, IM_COL32(110, 170, 240, 255), 3 * context.scale);
    list.AddText(font, size, {corner.x + padding, top + (height - needed.y) / 2},
                 IM_COL32(255, 255, 255, 255), english.c_str(), nullptr, most);
}

}  // namespace

void DrawGlosses(PanelContext& context, const Area& screen) {
    if (context.unit.suspended() || screen.width <= 1)
        return;
    const ImVec2 mouse = ImGui::GetIO().MousePos;
    for (const platform::gdi::PlacedText& text : context.unit.Screen().texts()) {
        const std::string english(GlossOf(text.text));
        if (english.empty())
            continue;
        RECT reach = text.box;
        reach.left -= kReach;
        reach.top -= kReach;
        reach.right += kReach;
        reach.bottom += kReach;
        if (context.shows_glosses)
            DrawOver(context, Place(reach, screen), screen, english);
        else if (Place(reach, screen).Contains(mouse.x, mouse.y) &&
                 !ImGui::GetIO().WantCaptureMouse)
            ImGui::SetTooltip("%s", english.c_str());
    }
}

}  // namespace unit
