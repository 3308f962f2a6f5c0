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

// A window of the layout's; its content follows.
void BeginArea(const char* name, const Area& area, ImGuiWindowFlags flags) {
    ImGui::SetNextWindowPos({area.x, area.y});
    ImGui::SetNextWindowSize({area.width, area.height});
    ImGui::Begin(name, nullptr, flags);
}

void DrawHead(Desk& desk) {
    const auto now = platform::kernel::Now();
    char text[64];
    std::snprintf(text, sizeof text, "%s   %lld s since power-on", CarTime(now).c_str(),
                  static_cast<long long>(now / std::chrono::seconds(1)));
    ImGui::PushFont(desk.fonts.heading);
    ColoredText(color::kText, "Virtual unit");
    ImGui::PopFont();
    ImGui::SameLine(ImGui::GetContentRegionMax().x - ImGui::CalcTextSize(text).x);
    ColoredText(color::kDim, text);
}

// What the operator is asked to do by hand.
void DrawMessage(Desk& desk) {
    if (desk.history.message().empty())
        return;
    ImGui::PushStyleColor(ImGuiCol_ChildBg, ImVec4(0.35F, 0.24F, 0.08F, 1));
    const float width = ImGui::GetContentRegionAvail().x;
    const float padding = ImGui::GetStyle().WindowPadding.x;
    const ImVec2 text =
        ImGui::CalcTextSize(desk.history.message().c_str(), nullptr, false, width - 2 * padding);
    ImGui::BeginChild("message", {width, text.y + ImGui::GetFrameHeight() + 3.5F * padding}, true);
    ImGui::PushTextWrapPos(0);
    ColoredText({1, 0.86F, 0.62F, 1}, desk.history.message());
    ImGui::PopTextWrapPos();
    if (ImGui::Button("Done"))
        desk.history.DismissMessage();
    ImGui::EndChild();
    ImGui::PopStyleColor();
}

}  // namespace

void Panel::Draw(Desk& desk, const Layout& layout) {
    BeginArea("panel", layout.panel, kFixed & ~ImGuiWindowFlags_NoScrollbar);
    DrawPanel(desk);
    ImGui::End();
    BeginArea("dock", layout.dock, kFixed);
    DrawDock(desk);
    ImGui::End();
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {12 * desk.scale, 4 * desk.scale});
    BeginArea("bar", layout.bar, kFixed);
    bar_.Draw(desk);
    ImGui::End();
    ImGui::PopStyleVar();
    DrawSplitter(desk, layout);
}

void Panel::DrawPanel(Desk& desk) {
    DrawHead(desk);
    DrawMessage(desk);
    DrawWizardSection(desk);
    card_.Draw(desk);
    dvr_.Draw(desk);
    power_.Draw(desk);
    faults_.Draw(desk);
    DrawScalerSection(desk);
    DrawViewSection(desk);
}

void Panel::DrawDock(Desk& desk) {
    if (!ImGui::BeginTabBar("tabs"))
        return;
    if (ImGui::BeginTabItem("Serial line")) {
        traffic_.Draw(desk);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Debug output")) {
        log_.Draw(desk);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Update")) {
        DrawProgress(desk);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Commands")) {
        commands_.Draw(desk, bar_.line());
        ImGui::EndTabItem();
    }
    ImGui::EndTabBar();
}

// The upper edge of the dock can be dragged.
void Panel::DrawSplitter(Desk& desk, const Layout& layout) {
    const float height = kSplitterHeight * desk.scale;
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {0, 0});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowMinSize, {1, 1});
    BeginArea("splitter", {0, layout.dock.y - height / 2, layout.dock.width, height},
              (kFixed & ~ImGuiWindowFlags_NoBringToFrontOnFocus) | ImGuiWindowFlags_NoBackground);
    ImGui::InvisibleButton("grip", {layout.dock.width, height});
    if (ImGui::IsItemHovered() || ImGui::IsItemActive())
        ImGui::SetMouseCursor(ImGuiMouseCursor_ResizeNS);
    if (ImGui::IsItemActive())
        desk.dock_height = layout.dock.height - ImGui::GetIO().MouseDelta.y;
    ImGui::End();
    ImGui::PopStyleVar(2);
}

}  // namespace unit
