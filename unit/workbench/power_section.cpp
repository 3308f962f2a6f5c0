#include "unit/workbench/readable.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

// The battery flags of SYSTEM_POWER_STATUS_EX2.
struct Flag {
    int value;
    const char* name;
};
constexpr Flag kFlags[] = {{1, "high"},     {2, "low"},          {4, "critical"},
                           {8, "charging"}, {128, "no battery"}, {255, "unknown"}};

constexpr std::size_t kWordsShown = 6;

std::string FlagName(int value) {
    for (const Flag& flag : kFlags)
        if (flag.value == value)
            return flag.name;
    return std::to_string(value);
}

std::string BatteryCommand(int percent, int flag) {
    return "battery " + std::to_string(percent) + " flag " + std::to_string(flag);
}

void DrawFlag(Desk& desk, const platform::PowerSupply& supply) {
    RowLabel(desk, "Battery flag");
    ImGui::SetNextItemWidth(-1);
    if (!ImGui::BeginCombo("##flag", FlagName(supply.battery_flag).c_str()))
        return;
    for (const Flag& flag : kFlags)
        if (ImGui::Selectable((std::to_string(flag.value) + "  " + flag.name).c_str(),
                              flag.value == supply.battery_flag))
            desk.commands.Follow(BatteryCommand(supply.battery_life_percent, flag.value));
    ImGui::EndCombo();
}

void DrawWords(Desk& desk) {
    const auto& words = desk.history.words().entries();
    const std::size_t first = words.size() > kWordsShown ? words.size() - kWordsShown : 0;
    for (std::size_t index = first; index < words.size(); ++index) {
        const History::Word& word = words[index];
        ColoredText(color::kDim, ReadableTime(word.time));
        ImGui::SameLine(104 * desk.scale);
        ColoredText(word.request ? color::kAccent : color::kGood,
                    (word.request ? "> " : "< ") + word.text);
    }
    if (words.empty())
        ColoredText(color::kDim, "Nothing was asked or heard yet.");
}

}  // namespace

void PowerSection::Draw(Desk& desk) {
    if (!Group(desk, "Power"))
        return;
    const platform::PowerSupply supply = desk.unit.supply();
    const bool on = supply.ac_line_status == 1;
    RowLabel(desk, "External");
    CommandButtons(desk, {{"On", "power on", on}, {"Off", "power off", !on}});
    RowLabel(desk, "Battery");
    if (!dragging_)
        percent_ = supply.battery_life_percent;
    ImGui::SetNextItemWidth(-1);
    ImGui::SliderInt("##battery", &percent_, 0, 100, "%d %%");
    dragging_ = ImGui::IsItemActive();
    if (ImGui::IsItemDeactivatedAfterEdit())
        desk.commands.Follow(BatteryCommand(percent_, supply.battery_flag));
    DrawFlag(desk, supply);
    RowLabel(desk, "Unit");
    ColoredText(desk.unit.suspended() ? color::kWarning : color::kText,
                desk.unit.suspended() ? "suspended" : "awake");
    NextInRow(desk);
    CommandButton(desk, "Wake", "wake");
    RowLabel(desk, "Ask all");
    CommandButtons(desk, {{"Suspend", "request suspend"},
                          {"Resume", "request resume"},
                          {"Power off", "request off"}});
    DrawWords(desk);
}

}  // namespace unit
