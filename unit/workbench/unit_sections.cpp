#include <cstdio>

#include "unit/probe/wizard_probe.h"
#include "unit/workbench/operator_hint.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr int kHintLines = 3;

// The battery flags of SYSTEM_POWER_STATUS_EX2.
struct Flag {
    int value;
    const char* name;
};
constexpr Flag kFlags[] = {{1, "high"},     {2, "low"},          {4, "critical"},
                           {8, "charging"}, {128, "no battery"}, {255, "unknown"}};

constexpr int kShownMessages = 4;

std::string FlagName(int value) {
    for (const Flag& flag : kFlags)
        if (flag.value == value)
            return flag.name;
    return std::to_string(value);
}

std::string BatteryCommand(int percent, int flag) {
    return "battery " + std::to_string(percent) + " flag " + std::to_string(flag);
}

void DrawFlag(PanelContext& context, const platform::PowerSupply& supply) {
    RowLabel(context, "Battery flag");
    ImGui::SetNextItemWidth(-1);
    if (!ImGui::BeginCombo("##flag", FlagName(supply.battery_flag).c_str()))
        return;
    for (const Flag& flag : kFlags)
        if (ImGui::Selectable((std::to_string(flag.value) + "  " + flag.name).c_str(),
                              flag.value == supply.battery_flag))
            context.commands.Execute(BatteryCommand(supply.battery_life_percent, flag.value));
    ImGui::EndCombo();
}

// In a space of fixed height: what is below must not move when a message comes.
void DrawPowerMessages(PanelContext& context) {
    ImGui::BeginChild("messages", {0, LinesHeight(kShownMessages)});
    const auto& messages = context.history.power_messages().entries();
    for (const History::PowerMessage& message : messages) {
        ColoredText(color::Dim(), ReadableTime(message.time));
        ImGui::SameLine(kValueColumn * context.scale);
        ColoredText(message.is_request ? color::Accent() : color::Good(),
                    (message.is_request ? "> " : "< ") + message.text);
    }
    if (messages.empty())
        ColoredText(color::Dim(), "No requests or broadcasts yet.");
    if (ImGui::GetScrollY() >= ImGui::GetScrollMaxY())
        ImGui::SetScrollHereY(1);
    ImGui::EndChild();
}

std::string KeyColor(const ScalerState& scaler) {
    char text[64];
    std::snprintf(text, sizeof text, "%s, red %u green %u blue %u",
                  scaler.key_enabled ? "on" : "off", GetRValue(scaler.key_color),
                  GetGValue(scaler.key_color), GetBValue(scaler.key_color));
    return text;
}

std::string Rectangle(int x, int y, int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height) + " at " + std::to_string(x) +
           ", " + std::to_string(y);
}

}  // namespace

void DrawWizardSection(PanelContext& context) {
    if (!Group(context, "Wizard"))
        return;
    const std::optional<WizardState> wizard = ReadWizard();
    // As many lines as the longest hint has: the buttons below stay where they are.
    ImGui::BeginChild("hint", {0, LinesHeight(kHintLines)});
    ImGui::PushTextWrapPos(0);
    ColoredText(color::Accent(),
                context.ended.empty() ? HintFor(ReadHintState(context.unit)) : context.ended);
    ImGui::PopTextWrapPos();
    if (!context.ended.empty() && ImGui::Button("Restart"))
        context.restart = true;
    ImGui::EndChild();
    const auto field = [&](const char* label, auto value) {
        Field(context, label, wizard ? value(*wizard) : "-");
    };
    field("Step", [](const WizardState& state) {
        return std::to_string(state.step) + "  " + WizardStepName(state.step);
    });
    field("Percent", [](const WizardState& state) { return std::to_string(state.percent) + " %"; });
    field("DVR state", [](const WizardState& state) -> std::string {
        return RunningStateName(state.running_state);
    });
    field("DVR version", [](const WizardState& state) {
        return state.dvr_version.empty() ? "unknown" : state.dvr_version;
    });
    field("Image", [](const WizardState& state) -> std::string {
        if (state.bin_version == 0)
            return "not reported";
        return std::string("reported, starts with '") + static_cast<char>(state.bin_version) + "'";
    });
}

void PowerSection::Draw(PanelContext& context) {
    if (!Group(context, "Power"))
        return;
    const platform::PowerSupply supply = context.unit.supply();
    const bool on = supply.ac_line_status == 1;
    RowLabel(context, "External");
    CommandButtons(context, {{"On", "power on", on}, {"Off", "power off", !on}});
    RowLabel(context, "Battery");
    if (!dragging_)
        percent_ = supply.battery_life_percent;
    ImGui::SetNextItemWidth(-1);
    ImGui::SliderInt("##battery", &percent_, 0, 100, "%d %%");
    dragging_ = ImGui::IsItemActive();
    if (ImGui::IsItemDeactivatedAfterEdit())
        context.commands.Execute(BatteryCommand(percent_, supply.battery_flag));
    DrawFlag(context, supply);
    RowLabel(context, "Unit");
    ColoredText(context.unit.suspended() ? color::Warning() : color::Text(),
                context.unit.suspended() ? "suspended" : "awake");
    NextInRow(context);
    CommandButton(context, "Wake", "wake");
    RowLabel(context, "Request");
    CommandButtons(context, {{"Suspend", "request suspend"},
                             {"Resume", "request resume"},
                             {"Power off", "request off"}});
    DrawPowerMessages(context);
}

void DrawScalerSection(PanelContext& context) {
    if (!Group(context, "Display scaler", false))
        return;
    const ScalerState scaler = context.unit.scaler().state();
    const ScalerWindow& window = scaler.window;
    Field(context, "Shows", scaler.VideoShows() ? "video where the key colour is" : "graphics only",
          scaler.VideoShows() ? color::Good() : color::Text());
    Field(context, "Handles", std::to_string(scaler.open_handles) + " open");
    Field(context, "Path", scaler.scaler_path ? "through the scaler" : "graphics");
    Field(context, "Selector",
          std::to_string(scaler.selector) +
              (scaler.selector == 0 ? "  composite video" : "  graphics only"));
    Field(context, "Alpha", std::to_string(scaler.alpha) + " of 63");
    Field(context, "Key colour", KeyColor(scaler));
    Field(context, "Source",
          Rectangle(window.source_x, window.source_y, window.source_width, window.source_height));
    Field(context, "Window", Rectangle(window.x, window.y, window.width, window.height));
}

}  // namespace unit
