#include "control/words.h"
#include "platform/kernel/text.h"
#include "unit/line/fault_text.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr int kActiveLines = 5;

std::string Switch(const char* fault, bool on) {
    return std::string("fault dvr ") + fault + (on ? " off" : " on");
}

}  // namespace

void FaultSection::Draw(PanelContext& context) {
    if (!Group(context, "Faults", false))
        return;
    DrawDvr(context);
    DrawLine(context);
    DrawDrivers(context);
    DrawCalls(context);
    DrawActive(context);
}

// In a space of fixed height: nothing moves when a fault becomes active.
void FaultSection::DrawActive(PanelContext& context) {
    RowLabel(context, "Active");
    ImGui::BeginChild("active", {0, LinesHeight(kActiveLines)}, true);
    const std::vector<LineFaults::Entry> line = context.unit.faults().line().List();
    for (const LineFaults::Entry& entry : line) {
        ImGui::PushID(entry.number);
        CommandButton(context, "x", "fault line clear " + std::to_string(entry.number));
        ImGui::SameLine();
        ImGui::PushTextWrapPos(0);
        ColoredText(color::Warning(), ToText(entry.rule) + ": " + std::to_string(entry.applied) +
                                          " of " + std::to_string(entry.matches));
        ImGui::PopTextWrapPos();
        ImGui::PopID();
    }
    bool others = false;
    ImGui::PushTextWrapPos(0);
    for (const std::string& command : context.unit.faults().List()) {
        if (command.starts_with("fault line "))
            continue;
        others = true;
        ColoredText(color::Warning(), command);
    }
    ImGui::PopTextWrapPos();
    if (line.empty() && !others)
        ColoredText(color::Dim(), "no faults");
    ImGui::EndChild();
}

void FaultSection::DrawDvr(PanelContext& context) {
    const dvrsim::Dvr* const dvr = context.unit.dvr().dvr();
    if (!dvr)
        return;
    const dvrsim::Faults& faults = dvr->GetFaults();
    RowLabel(context, "DVR");
    CommandButtons(
        context,
        {{"Silent", Switch("silent", faults.silent), faults.silent},
         {"No card report", Switch("silent-card", faults.silent_card), faults.silent_card},
         {"No version", Switch("silent-version", faults.silent_version), faults.silent_version},
         {"Wrong version",
          faults.reported_version ? "fault dvr no-version" : "fault dvr version 99.99.99.V9.99.99",
          faults.reported_version.has_value()},
         {"Repeated reports",
          faults.indication_copies > 1 ? "fault dvr copies 1" : "fault dvr copies 3",
          faults.indication_copies > 1},
         {"Clear", "fault dvr none"}});
    RowLabel(context, "Update at");
    ImGui::SetNextItemWidth(-1);
    ImGui::SliderInt("##at", &at_percent_, 1, 100, "%d %%");
    const auto choice = [&](const char* label, const std::string& fault,
                            const std::optional<std::uint8_t>& at) {
        const std::string command = "fault dvr " + fault + " ";
        return Choice{label, command + (at ? "off" : std::to_string(at_percent_)), at.has_value()};
    };
    RowLabel(context, "");
    CommandButtons(context,
                   {choice("Fails", "fail-at", faults.fail_at_percent),
                    choice("Hangs", "stop-at", faults.stop_at_percent),
                    choice("Stuck", "stuck-at", faults.stuck_at_percent),
                    choice("Reboots", "reboot-at", faults.reboot_at_percent),
                    {"Jumps back",
                     faults.jump_back ? "fault dvr jump-back off"
                                      : "fault dvr jump-back " + std::to_string(at_percent_) + " " +
                                            std::to_string(at_percent_ / 2),
                     faults.jump_back.has_value()}});
}

void FaultSection::DrawLine(PanelContext& context) {
    RowLabel(context, "Line");
    CommandButtons(
        context,
        {{"Bad checksums", "fault line corrupt checksum of FW_Upgrade_Version indications"},
         {"Drop bytes", "fault line drop bytes to-unit chance 1"},
         {"Noise", "fault line inject A55A00FF before indications chance 20"},
         {"Drop acknowledgements", "fault line drop acknowledgements chance 20"},
         {"Split frames", "fault line split 30ms frames to-unit"},
         {"Delay acknowledgements", "fault line delay 500ms acknowledgements"},
         {"Duplicate indications", "fault line duplicate indications"},
         {"Clear", "fault line clear"}});
}

void FaultSection::DrawDrivers(PanelContext& context) {
    const std::vector<std::wstring> names = context.unit.drivers().Names();
    RowLabel(context, "Driver");
    for (int index = 0; index < static_cast<int>(names.size()); ++index) {
        if (index > 0)
            ImGui::SameLine();
        const std::string name = platform::kernel::ToUtf8(names[static_cast<std::size_t>(index)]);
        ImGui::RadioButton(name.c_str(), &driver_, index);
    }
    const std::string fault =
        "fault driver " + platform::kernel::ToUtf8(names[static_cast<std::size_t>(driver_)]) + " ";
    RowLabel(context, "");
    CommandButtons(context, {{"Missing", fault + "missing"},
                             {"Late", fault + "late 5s"},
                             {"Refuses", fault + "refuses"},
                             {"Loaded", fault + "loaded"}});
    RowLabel(context, "HAL");
    CommandButtons(context, {{"Refuses", "fault hal refuses"}, {"Works", "fault hal works"}});
    RowLabel(context, "Battery driver");
    CommandButtons(context, {{"Fails", "fault battery-driver fails"},
                             {"Works", "fault battery-driver works"}});
}

void FaultSection::DrawCalls(PanelContext& context) {
    RowLabel(context, "Call fails");
    if (TextField("##call", "such as CreateFileW; Enter sets the fault", call_, -1) &&
        !call_.empty())
        context.commands.Execute("fault call " + control::QuoteWord(call_));
    RowLabel(context, "");
    CommandButtons(context, {{"List calls", "calls"}, {"Clear", "fault call clear"}});
    RowLabel(context, "Clock jumps");
    CommandButtons(context,
                   {{"1 min", "fault clock jump 1min"}, {"1 h", "fault clock jump 60min"}});
}

}  // namespace unit
