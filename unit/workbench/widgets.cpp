#include "unit/workbench/widgets.h"

#include <imgui_stdlib.h>

namespace unit {
namespace {

constexpr float kTipWidth = 320;

void CommandTip(PanelContext& context, const std::string& command, bool known) {
    ImGui::BeginTooltip();
    ImGui::PushTextWrapPos(kTipWidth * context.scale);
    ImGui::PushFont(context.fonts.mono);
    ImGui::TextUnformatted(command.c_str());
    ImGui::PopFont();
    if (!known)
        ColoredText(color::Warning(), "This unit has no such command.");
    else
        ColoredText(color::Dim(), context.commands.HelpOf(command));
    if (const std::string key = KeyOf(context, command); !key.empty())
        ColoredText(color::Accent(), "Key: " + key);
    ImGui::PopTextWrapPos();
    ImGui::EndTooltip();
}

}  // namespace

bool Group(const PanelContext& context, const char* title, bool initially_open) {
    auto& groups = context.view.groups;
    const auto kept = groups.find(title);
    const bool was_open = kept == groups.end() ? initially_open : kept->second;
    ImGui::SetNextItemOpen(was_open || context.unfold_all);
    ImGui::PushFont(context.fonts.heading);
    const bool open = ImGui::CollapsingHeader(title);
    ImGui::PopFont();
    if (open != was_open && !context.unfold_all)
        groups[title] = open;
    return open;
}

void RowLabel(const PanelContext& context, const char* label) {
    ImGui::AlignTextToFramePadding();
    ImGui::TextDisabled("%s", label);
    ImGui::SameLine(kValueColumn * context.scale);
}

void Field(const PanelContext& context, const char* label, const std::string& value,
           const ImVec4& text_color) {
    ImGui::TextDisabled("%s", label);
    ImGui::SameLine(kValueColumn * context.scale);
    ImGui::PushTextWrapPos(0);
    ColoredText(text_color, value);
    ImGui::PopTextWrapPos();
}

void NextInRow(const PanelContext& context, float width) {
    ImGui::SameLine();
    if (ImGui::GetContentRegionAvail().x < width) {
        ImGui::NewLine();
        ImGui::SetCursorPosX(kValueColumn * context.scale);
    }
}

float ButtonWidth(const char* label) {
    return ImGui::CalcTextSize(label, nullptr, true).x + 2 * ImGui::GetStyle().FramePadding.x;
}

void CommandButton(PanelContext& context, const char* label, const std::string& command,
                   bool chosen) {
    const bool known = context.commands.Knows(command);
    // Captions repeat ("On"); commands do not.
    ImGui::PushID(command.c_str());
    ImGui::BeginDisabled(!known);
    if (chosen) {
        ImGui::PushStyleColor(ImGuiCol_Button, ImGui::GetStyle().Colors[ImGuiCol_ButtonActive]);
        ImGui::PushStyleColor(ImGuiCol_Text, ImVec4(1, 1, 1, 1));
    }
    if (ImGui::Button(label))
        context.commands.Execute(command);
    if (chosen)
        ImGui::PopStyleColor(2);
    ImGui::EndDisabled();
    if (ImGui::IsItemHovered(ImGuiHoveredFlags_AllowWhenDisabled))
        CommandTip(context, command, known);
    ImGui::PopID();
}

void CommandButtons(PanelContext& context, std::initializer_list<Choice> choices) {
    bool first = true;
    for (const Choice& choice : choices) {
        if (!first)
            NextInRow(context, ButtonWidth(choice.label));
        first = false;
        CommandButton(context, choice.label, choice.command, choice.chosen);
    }
}

void ColoredText(const ImVec4& text_color, const std::string& text) {
    ImGui::PushStyleColor(ImGuiCol_Text, text_color);
    ImGui::TextUnformatted(text.c_str());
    ImGui::PopStyleColor();
}

float LinesHeight(int lines) {
    return static_cast<float>(lines) * ImGui::GetTextLineHeightWithSpacing();
}

void Tip(const char* text) {
    if (*text != '\0' && ImGui::IsItemHovered())
        ImGui::SetTooltip("%s", text);
}

bool TextField(const char* id, const char* hint, std::string& text, float width) {
    ImGui::SetNextItemWidth(width);
    return ImGui::InputTextWithHint(id, hint, &text, ImGuiInputTextFlags_EnterReturnsTrue);
}

}  // namespace unit
