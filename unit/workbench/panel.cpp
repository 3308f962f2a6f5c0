#include "unit/workbench/panel.h"

#include <cstdio>

#include "platform/kernel/clock.h"
#include "unit/picture/calendar.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr ImGuiWindowFlags kFixed = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                                    ImGuiWindowFlags_NoSavedSettings |
                                    ImGuiWindowFlags_NoBringToFrontOnFocus;
constexpr float kSplitterHeight = 6;

// Begins a window of the layout.
void BeginArea(const char* name, const Area& area, ImGuiWindowFlags flags) {
    ImGui::SetNextWindowPos({area.x, area.y});
    ImGui::SetNextWindowSize({area.width, area.height});
    ImGui::Begin(name, nullptr, flags);
}

void DrawHead(PanelContext& context) {
    const auto now = platform::kernel::Now();
    char text[64];
    std::snprintf(text, sizeof text, "%s   %lld s since power-on", CarTime(now).c_str(),
                  static_cast<long long>(now / std::chrono::seconds(1)));
    ImGui::PushFont(context.fonts.heading);
    ColoredText(color::kText, "Virtual unit");
    ImGui::PopFont();
    ImGui::SameLine(ImGui::GetContentRegionMax().x - ImGui::CalcTextSize(text).x);
    ColoredText(color::kDim, text);
}

// What the unit asks the operator to do by hand.
void DrawMessage(PanelContext& context) {
    if (context.history.message().empty())
        return;
    ImGui::PushStyleColor(ImGuiCol_ChildBg, ImVec4(0.35F, 0.24F, 0.08F, 1));
    const float width = ImGui::GetContentRegionAvail().x;
    const float padding = ImGui::GetStyle().WindowPadding.x;
    const ImVec2 text =
        ImGui::CalcTextSize(context.history.message().c_str(), nullptr, false, width - 2 * padding);
    ImGui::BeginChild("message", {width, text.y + ImGui::GetFrameHeight() + 3.5F * padding}, true);
    ImGui::PushTextWrapPos(0);
    ColoredText({1, 0.86F, 0.62F, 1}, context.history.message());
    ImGui::PopTextWrapPos();
    if (ImGui::Button("Done"))
        context.history.DismissMessage();
    ImGui::EndChild();
    ImGui::PopStyleColor();
}

void DrawViewSection(PanelContext& context) {
    if (!Group(context, "View and keys"))
        return;
    RowLabel(context, "Scale by");
    int whole = context.scaling == Scaling::kWhole ? 1 : 0;
    ImGui::RadioButton("whole factors", &whole, 1);
    ImGui::SameLine();
    ImGui::RadioButton("smooth", &whole, 0);
    context.scaling = whole != 0 ? Scaling::kWhole : Scaling::kSmooth;
    if (context.picture_rate > 0) {
        char text[64];
        std::snprintf(text, sizeof text, "%.0f per second while something moves",
                      context.picture_rate);
        Field(context, "Pictures", text);
    }
    for (const KeyRow& row : Keys()) {
        ImGui::PushFont(context.fonts.mono);
        ColoredText(color::kAccent, row.name);
        ImGui::PopFont();
        ImGui::SameLine(kValueColumn * context.scale);
        ColoredText(color::kDim, row.help);
    }
}

}  // namespace

void Panel::Draw(PanelContext& context, const Layout& layout) {
    BeginArea("panel", layout.panel, kFixed & ~ImGuiWindowFlags_NoScrollbar);
    DrawSections(context);
    ImGui::End();
    BeginArea("dock", layout.dock, kFixed);
    dock_.Draw(context, bar_.line());
    ImGui::End();
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {12 * context.scale, 4 * context.scale});
    BeginArea("bar", layout.bar, kFixed);
    bar_.Draw(context);
    ImGui::End();
    ImGui::PopStyleVar();
    DrawSplitter(context, layout);
}

void Panel::DrawSections(PanelContext& context) {
    DrawHead(context);
    DrawMessage(context);
    DrawWizardSection(context);
    card_.Draw(context);
    dvr_.Draw(context);
    power_.Draw(context);
    faults_.Draw(context);
    DrawScalerSection(context);
    DrawViewSection(context);
}

// The dock's upper edge, which can be dragged.
void Panel::DrawSplitter(PanelContext& context, const Layout& layout) {
    const float height = kSplitterHeight * context.scale;
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {0, 0});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowMinSize, {1, 1});
    BeginArea("splitter", {0, layout.dock.y - height / 2, layout.dock.width, height},
              (kFixed & ~ImGuiWindowFlags_NoBringToFrontOnFocus) | ImGuiWindowFlags_NoBackground);
    ImGui::InvisibleButton("grip", {layout.dock.width, height});
    if (ImGui::IsItemHovered() || ImGui::IsItemActive())
        ImGui::SetMouseCursor(ImGuiMouseCursor_ResizeNS);
    if (ImGui::IsItemActive())
        context.dock_height = layout.dock.height - ImGui::GetIO().MouseDelta.y;
    ImGui::End();
    ImGui::PopStyleVar(2);
}

}  // namespace unit
