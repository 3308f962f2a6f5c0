#include "control/words.h"
#include "dvrsim/storage_card.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

// The width that a text field has beside a button.
float FieldWidth(const char* button) {
    return ImGui::GetContentRegionAvail().x - ButtonWidth(button) - ImGui::GetStyle().ItemSpacing.x;
}

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

void DrawPlug(PanelContext& context) {
    const bool plugged = context.unit.dvr().plugged();
    RowLabel(context, "Plug");
    CommandButtons(context,
                   {{"Plugged in", "line plug", plugged}, {"Unplugged", "line unplug", !plugged}});
}

}  // namespace

void CardSection::Draw(PanelContext& context) {
    if (!Group(context, "SD card"))
        return;
    const dvrsim::Dvr* const dvr = context.unit.dvr().dvr();
    if (!dvr) {
        ColoredText(color::Dim(), "A real DVR is connected. Move its card by hand.");
        return;
    }
    const bool in = dvr->CardIn();
    // On one line, so that the buttons below stay where they are.
    ImGui::TextDisabled("Card");
    ImGui::SameLine(kValueColumn * context.scale);
    ColoredText(in ? color::Good() : color::Text(), in ? context.history.card_folder() : "out");
    if (in)
        Tip(context.history.card_folder().c_str());
    RowLabel(context, "Move");
    CommandButtons(context, {{"Insert", "card in"},
                             {"Insert without image", "card without image"},
                             {"Remove", "card out"}});
    RowLabel(context, "Any folder");
    bool insert = TextField("##folder", "path of a folder", folder_, FieldWidth("Insert"));
    ImGui::SameLine();
    insert |= ImGui::Button("Insert");
    Tip("Inserts this folder as the SD card.");
    if (insert && !folder_.empty())
        context.commands.Execute("card in " + control::QuoteWord(folder_));
    RowLabel(context, "New image");
    bool make = TextField("##version", dvrsim::kNewVersion, version_, FieldWidth("Make"));
    ImGui::SameLine();
    make |= ImGui::Button("Make");
    Tip("Inserts a card with an update image of this version.");
    if (make)
        context.commands.Execute("card with image " + control::QuoteWord(version_.empty()
                                                                             ? dvrsim::kNewVersion
                                                                             : version_));
    RowLabel(context, "Report");
    CommandButtons(context, {{"Broken", "card report broken"},
                             {"Formatting", "card report formatting"},
                             {"Full: normal", "card report full-normal"},
                             {"Full: event", "card report full-event"},
                             {"Full: both", "card report full-both"},
                             {"In", "card report plug-in"},
                             {"Out", "card report plug-out"}});
}

void DvrSection::Draw(PanelContext& context) {
    if (!Group(context, "DVR"))
        return;
    const dvrsim::Dvr* const dvr = context.unit.dvr().dvr();
    if (!dvr) {
        ColoredText(color::Dim(), "A real DVR is connected.");
        DrawPlug(context);
        RowLabel(context, "Restart");
        CommandButton(context, "Reset", "dvr reset");
        return;
    }
    const bool off = dvr->GetState() == dvrsim::Dvr::State::kOff;
    Field(context, "State", StateName(dvr->GetState()), off ? color::Warning() : color::Text());
    Field(context, "Firmware", dvr->FirmwareVersion());
    if (context.history.card_folder() != card_folder_) {
        card_folder_ = context.history.card_folder();
        image_ = card_folder_.empty() ? std::nullopt : dvrsim::ReadImageVersion(card_folder_);
    }
    Field(context, "Image version", image_.value_or(card_folder_.empty() ? "no card" : "no image"),
          image_ ? color::Text() : color::Dim());
    RowLabel(context, "Update");
    ImGui::ProgressBar(static_cast<float>(dvr->Percent()) / 100, ImVec2(-1, 0),
                       (std::to_string(dvr->Percent()) + " %").c_str());
    DrawPlug(context);
    RowLabel(context, "Power");
    CommandButtons(context, {{"On", "dvr power on", !off},
                             {"Off", "dvr power off", off},
                             {"Reset", "dvr reset"},
                             {"Reboot", "dvr reboot"}});
    const unsigned slow_factor = dvr->GetFaults().slow_factor;
    RowLabel(context, "Boot time");
    CommandButtons(context, {{"Normal", "fault dvr slow 1", slow_factor == 1},
                             {"3 x longer", "fault dvr slow 3", slow_factor == 3},
                             {"10 x longer", "fault dvr slow 10", slow_factor == 10}});
    RowLabel(context, "Update takes");
    CommandButtons(context, {{"5 s", "dvr update-time 5s"},
                             {"30 s", "dvr update-time 30s"},
                             {"2 min", "dvr update-time 2min"}});
    RowLabel(context, "Set firmware");
    if (TextField("##firmware", "version; Enter sets it", firmware_, -1) && !firmware_.empty())
        context.commands.Execute("dvr firmware " + control::QuoteWord(firmware_));
}

}  // namespace unit
