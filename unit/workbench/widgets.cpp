#include "unit/workbench/widgets.h"

#include <imgui_stdlib.h>

#include "unit/workbench/keys.h"

namespace unit {
namespace {

constexpr float kValueColumn = 104;
constexpr float kTipWidth = 320;

void CommandTip(Desk& desk, const std::string& command, bool known) {
    ImGui::BeginTooltip();
    ImGui::PushTextWrapPos(kTipWidth * desk.scale);
    ImGui::PushFont(desk.fonts.mono);
    ImGui::TextUnformatted(command.c_str());
    ImGui::PopFont();
    if (!known)
        ColoredText(color::kWarning, "This unit has no such command.");
    else
        ColoredText(color::kDim, desk.commands.HelpOf(command));
    if (const std::string key = KeyOf(desk, command); !key.empty())
        ColoredText(color::kAccent, "Key: " + key);
    ImGui::PopTextWrapPos();
    ImGui::EndTooltip();
}

}  // namespace

bool Group(const Desk& desk, const char* title, bool open_at_first) {
    if (desk.unfolded)
        ImGui::SetNextItemOpen(true);
    ImGui::PushFont(desk.fonts.heading);
    const bool open =
        ImGui::CollapsingHeader(title, open_at_first ? ImGuiTreeNodeFlags_DefaultOpen : 0);
    ImGui::PopFont();
    return open;
}

void RowLabel(const Desk& desk, const char* label) {
    ImGui::AlignTextToFramePadding();
    ImGui::TextDisabled("%s", label);
    ImGui::SameLine(kValueColumn * desk.scale);
}

void Field(const Desk& desk, const char* label, const std::string& value,
           const ImVec4& text_color) {
    ImGui::TextDisabled("%s", label);
    ImGui::SameLine(kValueColumn * desk.scale);
    ImGui::PushTextWrapPos(0);
    ColoredText(text_color, value);
    ImGui::PopTextWrapPos();
}

void NextInRow(const Desk& desk, float width) {
    ImGui::SameLine();
    if (ImGui::GetContentRegionAvail().x < width) {
        ImGui::NewLine();
        ImGui::SetCursorPosX(kValueColumn * desk.scale);
    }
}

float ButtonWidth(const char* label) {
    return ImGui::CalcTextSize(label, nullptr, true).x + 2 * ImGui::GetStyle().FramePadding.x;
}

void CommandButton(Desk& desk, const char* label, const std::string& command, bool chosen) {
    const bool known = desk.commands.Knows(command);
    ImGui::BeginDisabled(!known);
    if (chosen) {
        ImGui::PushStyleColor(ImGuiCol_Button, ImGui::GetStyle().Colors[ImGuiCol_ButtonActive]);
        ImGui::PushStyleColor(ImGuiCol_Text, ImVec4(1, 1, 1, 1));
    }
    if (ImGui::Button(label))
        desk.commands.Follow(command);
    if (chosen)
        ImGui::PopStyleColor(2);
    ImGui::EndDisabled();
    if (ImGui::IsItemHovered(ImGuiHoveredFlags_AllowWhenDisabled))
        CommandTip(desk, command, known);
}

void CommandButtons(Desk& desk, std::initializer_list<Choice> choices) {
    bool first = true;
    for (const Choice& choice : choices) {
        if (!first)
            NextInRow(desk, ButtonWidth(choice.label));
        first = false;
        CommandButton(desk, choice.label, choice.command, choice.chosen);
    }
}

void ColoredText(const ImVec4& text_color, const std::string& text) {
    ImGui::PushStyleColor(ImGuiCol_Text, text_color);
    ImGui::TextUnformatted(text.c_str());
    ImGui::PopStyleColor();
}

void Tip(const char* text) {
    if (ImGui::IsItemHovered())
        ImGui::SetTooltip("%s", text);
}

bool TextField(const char* id, const char* hint, std::string& text, float width) {
    ImGui::SetNextItemWidth(width);
    return ImGui::InputTextWithHint(id, hint, &text, ImGuiInputTextFlags_EnterReturnsTrue);
}

}  // namespace unit
