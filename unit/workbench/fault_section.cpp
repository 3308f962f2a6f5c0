#include "control/words.h"
#include "platform/kernel/text.h"
#include "unit/line/fault_text.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

std::string Switch(const char* fault, bool on) {
    return std::string("fault dvr ") + fault + (on ? " off" : " on");
}

}  // namespace

void FaultSection::Draw(Desk& desk) {
    if (!Group(desk, "Faults", false))
        return;
    DrawDvr(desk);
    DrawUpdate(desk);
    DrawLine(desk);
    DrawDrivers(desk);
    DrawCalls(desk);
}

void FaultSection::DrawDvr(Desk& desk) {
    const dvrsim::Dvr* const dvr = desk.unit.dvr().dvr();
    if (!dvr)
        return;
    const dvrsim::Faults& faults = dvr->GetFaults();
    RowLabel(desk, "DVR");
    CommandButtons(
        desk,
        {{"Silent", Switch("silent", faults.silent), faults.silent},
         {"No card report", Switch("silent-card", faults.silent_card), faults.silent_card},
         {"No version", Switch("silent-version", faults.silent_version), faults.silent_version},
         {"Wrong version",
          faults.reported_version ? "fault dvr no-version" : "fault dvr version 99.99.99.V9.99.99",
          faults.reported_version.has_value()},
         {"Repeats reports",
          faults.indication_copies > 1 ? "fault dvr copies 1" : "fault dvr copies 3",
          faults.indication_copies > 1},
         {"None", "fault dvr none"}});
}

void FaultSection::DrawUpdate(Desk& desk) {
    const dvrsim::Dvr* const dvr = desk.unit.dvr().dvr();
    if (!dvr)
        return;
    const dvrsim::Faults& faults = dvr->GetFaults();
    RowLabel(desk, "Update at");
    ImGui::SetNextItemWidth(-1);
    ImGui::SliderInt("##at", &at_percent_, 1, 100, "%d %%");
    const auto choice = [&](const char* label, const std::string& fault,
                            const std::optional<std::uint8_t>& at) {
        const std::string command = "fault dvr " + fault + " ";
        return Choice{label, command + (at ? "off" : std::to_string(at_percent_)), at.has_value()};
    };
    RowLabel(desk, "");
    CommandButtons(desk, {choice("Fails", "fail-at", faults.fail_at_percent),
                          choice("Hangs", "stop-at", faults.stop_at_percent),
                          choice("Stuck", "stuck-at", faults.stuck_at_percent),
                          choice("Reboots", "reboot-at", faults.reboot_at_percent),
                          {"Jumps back",
                           faults.jump_back ? "fault dvr jump-back off"
                                            : "fault dvr jump-back " + std::to_string(at_percent_) +
                                                  " " + std::to_string(at_percent_ / 2),
                           faults.jump_back.has_value()}});
}

void FaultSection::DrawLine(Desk& desk) {
    RowLabel(desk, "Line");
    CommandButtons(desk, {{"Bad checksum on percents",
                           "fault line corrupt checksum of FW_Upgrade_Version indications"},
                          {"Loses 1 % of bytes", "fault line drop bytes to-unit chance 1"},
                          {"Loses answers", "fault line drop acknowledgements chance 20"},
                          {"Doubles reports", "fault line duplicate indications"},
                          {"Delays answers", "fault line delay 500ms acknowledgements"},
                          {"Splits frames", "fault line split 30ms frames to-unit"},
                          {"Noise", "fault line inject A55A00FF before indications chance 20"},
                          {"Clear", "fault line clear"}});
    for (const LineFaults::Entry& entry : desk.unit.dvr().faults().List()) {
        ImGui::PushID(entry.number);
        RowLabel(desk, "");
        CommandButton(desk, "x", "fault line clear " + std::to_string(entry.number));
        ImGui::SameLine();
        ImGui::PushTextWrapPos(0);
        ColoredText(color::kWarning, ToText(entry.rule) + ": " + std::to_string(entry.applied) +
                                         " of " + std::to_string(entry.matches));
        ImGui::PopTextWrapPos();
        ImGui::PopID();
    }
}

void FaultSection::DrawDrivers(Desk& desk) {
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
                          {"Late", fault + "late 5s"},
                          {"Refuses", fault + "refuses"},
                          {"Loaded", fault + "loaded"}});
    for (const std::string& line : desk.unit.drivers().Faults())
        Field(desk, "", line, color::kWarning);
    RowLabel(desk, "HAL");
    CommandButtons(desk, {{"Refuses", "fault hal refuses"}, {"Works##hal", "fault hal works"}});
    RowLabel(desk, "Battery drv.");
    CommandButtons(desk, {{"Fails", "fault battery-driver fails"},
                          {"Works##battery", "fault battery-driver works"}});
}

void FaultSection::DrawCalls(Desk& desk) {
    RowLabel(desk, "Call fails");
    if (TextField("##call", "CreateFileW; Enter: its next call fails", call_, -1) && !call_.empty())
        desk.commands.Follow("fault call " + control::QuoteWord(call_));
    RowLabel(desk, "");
    CommandButtons(desk, {{"List calls", "calls"}, {"Clear##calls", "fault call clear"}});
    RowLabel(desk, "Clock jumps");
    CommandButtons(desk, {{"1 min", "fault clock jump 1min"}, {"1 h", "fault clock jump 60min"}});
}

}  // namespace unit
