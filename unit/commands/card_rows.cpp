#include <filesystem>

#include "dvrsim/card_folders.h"
#include "unit/commands/command_rows.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

// The card of a DVR that is not simulated is in the hands of a person, who is asked.
Outcome Ask(Operator& op, const std::string& what) {
    op.unit().Say(what);
    return Done();
}

Outcome Insert(Operator& op, const std::string& folder, const std::string& card) {
    const dvrsim::Dvr* const dvr = op.unit().dvr().dvr();
    if (!dvr)
        return Ask(op, "Put " + card + " into the DVR.");
    if (dvr->CardIn())
        return Refused("a card is in already; take it out first");
    if (folder.empty())
        return Refused(dvrsim::CardFolders::kNoSuchCard);
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored))
        return Refused(folder + " is not a folder");
    op.unit().InsertCard(folder);
    return Done();
}

Outcome CardIn(Operator& op, const Values& values) {
    if (values.Has("VERSION"))
        return Insert(op, op.MakeCard(values.Text("VERSION")),
                      "the SD card with the update image " + values.Text("VERSION"));
    return Insert(op, values.Has("FOLDER") ? values.Text("FOLDER") : op.image_card(),
                  "the SD card with the update image");
}

Outcome CardWithoutImage(Operator& op, const Values&) {
    return Insert(op, op.MakeCard(std::nullopt), "an SD card without an update image");
}

Outcome CardOut(Operator& op, const Values&) {
    const dvrsim::Dvr* const dvr = op.unit().dvr().dvr();
    if (!dvr)
        return Ask(op, "Take the SD card out of the DVR.");
    if (!dvr->CardIn())
        return Refused("there is no card to take out");
    op.unit().RemoveCard();
    return Done();
}

}  // namespace

UnitRows CardRows() {
    return {
        {"card in [FOLDER]",
         "Puts the SD card into the DVR: that folder of the host, or the card with the update "
         "image.",
         CardIn},
        {"card with image VERSION", "Puts in a card whose update image has that version.", CardIn},
        {"card without image", "Puts in a card that holds no update image.", CardWithoutImage},
        {"card out", "Takes the SD card out of the DVR.", CardOut},
    };
}

}  // namespace unit
