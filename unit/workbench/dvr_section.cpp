#include "control/words.h"
#include "dvrsim/storage_card.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

const char* StateName(dvrsim::Dvr::State state) {
    switch (state) {
        case dvrsim::Dvr::State::kOff:
            return "off";
        case dvrsim::Dvr::State::kBooting:
            return "booting";
        case dvrsim::Dvr::State::kNormal:
            return "normal";
        case dvrsim::Dvr::State::kUpdating:
            return "updating";
        case dvrsim::Dvr::State::kUpdateFinished:
            return "update finished, waits for a reset";
        case dvrsim::Dvr::State::kUpdateFailed:
            return "update failed, waits for a reset";
    }
    return "?";
}

void DrawPlug(Desk& desk) {
    const bool plugged = desk.unit.dvr().plugged();
    RowLabel(desk, "Plug");
    CommandButtons(desk,
                   {{"Attached", "line plug", plugged}, {"Unplugged", "line unplug", !plugged}});
}

}  // namespace

void DvrSection::Draw(Desk& desk) {
    if (!Group(desk, "DVR"))
        return;
    const dvrsim::Dvr* const dvr = desk.unit.dvr().dvr();
    if (!dvr) {
        ColoredText(color::kDim, "A real DVR is on the line.");
        DrawPlug(desk);
        RowLabel(desk, "Restart");
        CommandButton(desk, "Reset", "dvr reset");
        return;
    }
    const bool off = dvr->GetState() == dvrsim::Dvr::State::kOff;
    Field(desk, "State", StateName(dvr->GetState()), off ? color::kWarning : color::kText);
    Field(desk, "Firmware", dvr->FirmwareVersion());
    if (desk.history.card_folder() != card_folder_) {
        card_folder_ = desk.history.card_folder();
        image_ = card_folder_.empty() ? std::nullopt : dvrsim::ReadImageVersion(card_folder_);
    }
    Field(desk, "In the image", image_.value_or(card_folder_.empty() ? "no card" : "no image"),
          image_ ? color::kText : color::kDim);
    RowLabel(desk, "Update");
    ImGui::ProgressBar(static_cast<float>(dvr->Percent()) / 100, ImVec2(-1, 0),
                       (std::to_string(dvr->Percent()) + " %").c_str());
    DrawPlug(desk);
    RowLabel(desk, "Power");
    CommandButtons(desk, {{"On", "dvr power on", !off},
                          {"Off", "dvr power off", off},
                          {"Reset", "dvr reset"},
                          {"Reboot", "dvr reboot"}});
    const unsigned slow_factor = dvr->GetFaults().slow_factor;
    RowLabel(desk, "Boots");
    CommandButtons(desk, {{"As usual", "fault dvr slow 1", slow_factor == 1},
                          {"3 x slower", "fault dvr slow 3", slow_factor == 3},
                          {"10 x slower", "fault dvr slow 10", slow_factor == 10}});
    RowLabel(desk, "Update takes");
    CommandButtons(desk, {{"5 s", "dvr update-time 5s"},
                          {"30 s", "dvr update-time 30s"},
                          {"2 min", "dvr update-time 2min"}});
    RowLabel(desk, "Firmware is");
    if (TextField("##firmware", "a version, Enter sets it", firmware_, -1) && !firmware_.empty())
        desk.commands.Follow("dvr firmware " + control::QuoteWord(firmware_));
}

}  // namespace unit
