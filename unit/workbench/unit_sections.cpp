#include <cstdio>

#include "unit/probe/wizard_probe.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

// What the operator can do at each step of the wizard, from step -1 on.
constexpr const char* kAdvice[] = {
    "Click \"Power On\" on the unit's screen. The mouse is the finger.",
    "Remove the SD card if it is in, then click \"Next\".",
    "Insert the SD card, then click \"Update\".",
    "The DVR updates itself. Wait, or try a fault.",
    "Wait until the DVR has restarted.",
    "Remove the SD card, then click \"Next\".",
    "The update is over. The screen shows the result.",
    "Close the wizard with its red button.",
};

const char* AdviceFor(int step) {
    const int index = step + 1;
    return index >= 0 && index < std::ssize(kAdvice) ? kAdvice[index] : "";
}

// The battery flags of SYSTEM_POWER_STATUS_EX2.
struct Flag {
    int value;
    const char* name;
};
constexpr Flag kFlags[] = {{1, "high"},     {2, "low"},          {4, "critical"},
                           {8, "charging"}, {128, "no battery"}, {255, "unknown"}};

constexpr std::size_t kShownMessages = 6;

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

void DrawPowerMessages(PanelContext& context) {
    const auto& messages = context.history.power_messages().entries();
    const std::size_t first =
        messages.size() > kShownMessages ? messages.size() - kShownMessages : 0;
    for (std::size_t index = first; index < messages.size(); ++index) {
        const History::PowerMessage& message = messages[index];
        ColoredText(color::kDim, ReadableTime(message.time));
        ImGui::SameLine(kValueColumn * context.scale);
        ColoredText(message.is_request ? color::kAccent : color::kGood,
                    (message.is_request ? "> " : "< ") + message.text);
    }
    if (messages.empty())
        ColoredText(color::kDim, "No requests or broadcasts yet.");
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
    if (!wizard) {
        ColoredText(color::kDim, "The wizard has no window yet.");
        return;
    }
    ImGui::PushTextWrapPos(0);
    ColoredText(color::kAccent, AdviceFor(wizard->step));
    ImGui::PopTextWrapPos();
    Field(context, "Step", std::to_string(wizard->step) + "  " + WizardStepName(wizard->step));
    Field(context, "Percent", std::to_string(wizard->percent) + " %");
    Field(context, "DVR state", RunningStateName(wizard->running_state));
    Field(context, "DVR version", wizard->dvr_version.empty() ? "unknown" : wizard->dvr_version);
    Field(context, "Image",
          wizard->bin_version == 0 ? std::string("not reported")
                                   : std::string("reported, starts with '") +
                                         static_cast<char>(wizard->bin_version) + "'");
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
    ColoredText(context.unit.suspended() ? color::kWarning : color::kText,
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
          scaler.VideoShows() ? color::kGood : color::kText);
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
