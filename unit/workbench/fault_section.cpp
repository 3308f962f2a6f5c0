#include "platform/kernel/text.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {

void FaultSection::Draw(Desk& desk) {
    if (!Group(desk, "Faults", false))
        return;
    const std::vector<std::wstring> names = desk.unit.drivers().Names();
    RowLabel(desk, "Driver");
    for (int index = 0; index < static_cast<int>(names.size()); ++index) {
        if (index > 0)
            ImGui::SameLine();
        const std::string name = platform::kernel::ToUtf8(names[static_cast<std::size_t>(index)]);
        ImGui::RadioButton(name.c_str(), &driver_, index);
    }
    const std::string fault =
        "fault driver " + platform::kernel::ToUtf8(names[static_cast<std::size_t>(driver_)]) + " ";
    RowLabel(desk, "");
    CommandButtons(desk, {{"Missing", fault + "missing"},
                          {"Loaded", fault + "loaded"},
                          {"Late 5 s", fault + "late 5s"},
                          {"Refuses once", fault + "refuses"}});
    RowLabel(desk, "HAL");
    CommandButtons(desk, {{"Refuses", "fault hal refuses"}, {"Works", "fault hal works"}});
    RowLabel(desk, "Battery driver");
    CommandButtons(
        desk, {{"Fails", "fault battery-driver fails"}, {"Works", "fault battery-driver works"}});
}

}  // namespace unit
