#include "control/words.h"
#include "dvrsim/storage_card.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

// Room for a text field beside a button.
float FieldWidth(const char* button) {
    return ImGui::GetContentRegionAvail().x - ButtonWidth(button) - ImGui::GetStyle().ItemSpacing.x;
}

}  // namespace

void CardSection::Draw(Desk& desk) {
    if (!Group(desk, "SD card"))
        return;
    const dvrsim::Dvr* const dvr = desk.unit.dvr().dvr();
    if (!dvr) {
        ColoredText(color::kDim, "The DVR is a real one: its card is in your hands.");
        return;
    }
    const bool in = dvr->CardIn();
    Field(desk, "Card", in ? desk.history.card_folder() : "out", in ? color::kGood : color::kText);
    RowLabel(desk, "Put");
    CommandButtons(
        desk, {{"In", "card in"}, {"In without image", "card without image"}, {"Out", "card out"}});
    RowLabel(desk, "Any folder");
    bool put = TextField("##folder", "path of a folder", folder_, FieldWidth("Put in"));
    ImGui::SameLine();
    put |= ImGui::Button("Put in");
    Tip("Puts that folder in as the SD card.");
    if (put && !folder_.empty())
        desk.commands.Follow("card in " + control::QuoteWord(folder_));
    RowLabel(desk, "Any image");
    bool make = TextField("##version", dvrsim::kNewVersion, version_, FieldWidth("Make"));
    ImGui::SameLine();
    make |= ImGui::Button("Make");
    Tip("Puts in a card whose update image has that version.");
    if (make)
        desk.commands.Follow("card with image " +
                             control::QuoteWord(version_.empty() ? dvrsim::kNewVersion : version_));
    RowLabel(desk, "Report");
    CommandButtons(desk, {{"Broken", "card report broken"},
                          {"Formatting", "card report formatting"},
                          {"Full: normal", "card report full-normal"},
                          {"Full: event", "card report full-event"},
                          {"Full: both", "card report full-both"},
                          {"In", "card report plug-in"},
                          {"Out", "card report plug-out"}});
}

}  // namespace unit
