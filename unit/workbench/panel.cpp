#include "unit/workbench/panel.h"

#include <algorithm>
#include <cstdio>

#include "platform/kernel/scheduler.h"
#include "unit/picture/calendar.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr ImGuiWindowFlags kFixed = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                                    ImGuiWindowFlags_NoSavedSettings |
                                    ImGuiWindowFlags_NoBringToFrontOnFocus;
constexpr float kSplitterHeight = 6;
constexpr float kClockWidth = 225;

// Begins a window of the layout.
void BeginArea(const char* name, const Area& area, ImGuiWindowFlags flags) {
    ImGui::SetNextWindowPos({area.x, area.y});
    ImGui::SetNextWindowSize({area.width, area.height});
    ImGui::Begin(name, nullptr, flags);
}

void DrawHead(PanelContext& context) {
    const auto now = platform::kernel::Now();
    char text[64];
    const bool paused = platform::kernel::ClockPaused();
    std::snprintf(text, sizeof text, "%s   %lld s %s", CarTime(now).c_str(),
                  static_cast<long long>(now / std::chrono::seconds(1)),
                  paused ? "- PAUSED" : "since power-on");
    ImGui::PushFont(context.fonts.heading);
    ColoredText(color::Text(), "Virtual unit");
    ImGui::PopFont();
    // A fixed place: the text's width changes with its digits.
    ImGui::SameLine(std::max(0.0F, ImGui::GetContentRegionMax().x - kClockWidth * context.scale));
    ColoredText(paused ? color::Warning() : color::Dim(), text);
}

// What the unit asks the operator to do by hand, at the panel's lower edge: the groups above keep
// their places. At most half of the panel.
float MessageHeight(const PanelContext& context) {
    if (context.history.message().empty())
        return 0;
    const ImVec2 space = ImGui::GetContentRegionAvail();
    const ImVec2 padding = ImGui::GetStyle().WindowPadding;
    const ImVec2 text = ImGui::CalcTextSize(context.history.message().c_str(), nullptr, false,
                                            std::max(1.0F, space.x - 2 * padding.x));
    return std::min(text.y + ImGui::GetFrameHeightWithSpacing() + 2 * padding.y, space.y / 2);
}

void DrawMessage(PanelContext& context, float height) {
    ImGui::PushStyleColor(ImGuiCol_ChildBg, CurrentPalette().message);
    ImGui::BeginChild("message", {0, height}, true);
    ImGui::PushTextWrapPos(0);
    ColoredText(CurrentPalette().message_text, context.history.message());
    ImGui::PopTextWrapPos();
    if (ImGui::Button("Done"))
        context.history.DismissMessage();
    ImGui::EndChild();
    ImGui::PopStyleColor();
}

void DrawKeys(PanelContext& context) {
    ImGui::Checkbox("Keys act", &context.view.keys_act);
    Tip("While no text field has the keyboard, the letters below act. The other keys always do.");
    for (const KeyRow& row : Keys()) {
        const bool acts = !row.command || context.view.keys_act;
        ImGui::PushFont(context.fonts.mono);
        ColoredText(acts ? color::Accent() : color::Dim(), row.name);
        ImGui::PopFont();
        ImGui::SameLine(kValueColumn * context.scale);
        ColoredText(color::Dim(), row.help);
    }
}

void DrawTime(PanelContext& context) {
    const bool paused = platform::kernel::ClockPaused();
    RowLabel(context, "Time");
    CommandButtons(context, {{"Pause", "clock pause", paused},
                             {"Run", "clock resume", !paused},
                             {"Step", "clock step"}});
    RowLabel(context, "Speed");
    // Between two frames of the panel, the slider keeps what the operator drags.
    static float dragged = 1;
    static bool dragging = false;
    if (!dragging)
        dragged = static_cast<float>(platform::kernel::ClockSpeed());
    ImGui::SetNextItemWidth(-1);
    ImGui::SliderFloat("##speed", &dragged, 0.1F, 1000, "%.1f times", ImGuiSliderFlags_Logarithmic);
    dragging = ImGui::IsItemActive();
    if (ImGui::IsItemDeactivatedAfterEdit()) {
        char command[32];
        std::snprintf(command, sizeof command, "clock speed %.1f",
                      std::clamp(static_cast<double>(dragged), 0.1, 1000.0));
        context.commands.Execute(command);
    }
}

void DrawViewSection(PanelContext& context) {
    if (!Group(context, "View and keys"))
        return;
    RowLabel(context, "Run");
    if (ImGui::Button("Restart"))
        context.restart = true;
    Tip("Ends this run and begins another one on a new unit, in this window.");
    DrawTime(context);
    const auto choose = [&context](const char* label, auto& value, auto first,
                                   const char* first_name, auto second, const char* second_name) {
        RowLabel(context, label);
        if (ImGui::RadioButton(first_name, value == first))
            value = first;
        ImGui::SameLine();
        if (ImGui::RadioButton(second_name, value == second))
            value = second;
    };
    choose("Scale by", context.view.scaling, Scaling::kWhole, "whole factors", Scaling::kSmooth,
           "smooth");
    choose("Colours", context.view.theme, Theme::kDark, "dark", Theme::kLight, "light");
    char rate[64] = "-";
    if (context.picture_rate > 0)
        std::snprintf(rate, sizeof rate, "%.0f per second while something moves",
                      context.picture_rate);
    Field(context, "Pictures", rate);
    DrawKeys(context);
}

}  // namespace

void Panel::Draw(PanelContext& context, const Layout& layout) {
    BeginArea("panel", layout.panel, kFixed);
    const float message = MessageHeight(context);
    const float space = ImGui::GetContentRegionAvail().y;
    const float gap = message > 0 ? message + ImGui::GetStyle().ItemSpacing.y : 0;
    ImGui::BeginChild("groups", {0, std::max(1.0F, space - gap)});
    DrawSections(context);
    ImGui::EndChild();
    if (message > 0)
        DrawMessage(context, message);
    ImGui::End();
    if (layout.dock) {
        BeginArea("dock", *layout.dock, kFixed);
        dock_.Draw(context, bar_.line());
        ImGui::End();
        DrawSplitter(context, *layout.dock);
    }
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {12 * context.scale, 4 * context.scale});
    BeginArea("bar", layout.bar, kFixed & ~ImGuiWindowFlags_NoScrollbar);
    bar_.Draw(context);
    ImGui::End();
    ImGui::PopStyleVar();
}

void Panel::DrawSections(PanelContext& context) {
    DrawHead(context);
    DrawWizardSection(context);
    card_.Draw(context);
    dvr_.Draw(context);
    power_.Draw(context);
    faults_.Draw(context);
    DrawScalerSection(context);
    DrawViewSection(context);
}

// The dock's upper edge, which can be dragged.
void Panel::DrawSplitter(PanelContext& context, const Area& dock) {
    const float height = kSplitterHeight * context.scale;
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {0, 0});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowMinSize, {1, 1});
    BeginArea("splitter", {0, dock.y - height / 2, dock.width, height},
              (kFixed & ~ImGuiWindowFlags_NoBringToFrontOnFocus) | ImGuiWindowFlags_NoBackground);
    ImGui::InvisibleButton("grip", {dock.width, height});
    if (ImGui::IsItemHovered() || ImGui::IsItemActive())
        ImGui::SetMouseCursor(ImGuiMouseCursor_ResizeNS);
    if (ImGui::IsItemActive())
        context.view.dock_height = dock.height - ImGui::GetIO().MouseDelta.y;
    ImGui::End();
    ImGui::PopStyleVar(2);
}

}  // namespace unit
