#include <filesystem>

#include "dvrsim/card_box.h"
#include "unit/commands/command_rows.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

// The card of a DVR that is not simulated is in the hands of a person, who is asked.
Outcome Ask(Operator& hands, const std::string& what) {
    hands.unit().Say(what);
    return Done();
}

Outcome Insert(Operator& hands, const std::string& folder, const std::string& card) {
    const dvrsim::Dvr* const dvr = hands.unit().dvr().dvr();
    if (!dvr)
        return Ask(hands, "Put " + card + " into the DVR.");
    if (dvr->CardIn())
        return Refused("a card is in already; take it out first");
    if (folder.empty())
        return Refused(dvrsim::CardBox::kNoSuchCard);
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored))
        return Refused(folder + " is not a folder");
    hands.unit().InsertCard(folder);
    return Done();
}

Outcome CardIn(Operator& hands, const Values& values) {
    if (values.Has("VERSION"))
        return Insert(hands, hands.MakeCard(values.Text("VERSION")),
                      "the SD card with the update image " + values.Text("VERSION"));
    return Insert(hands, values.Has("FOLDER") ? values.Text("FOLDER") : hands.image_card(),
                  "the SD card with the update image");
}

Outcome CardWithoutImage(Operator& hands, const Values&) {
    return Insert(hands, hands.MakeCard(std::nullopt), "an SD card without an update image");
}

Outcome CardOut(Operator& hands, const Values&) {
    const dvrsim::Dvr* const dvr = hands.unit().dvr().dvr();
    if (!dvr)
        return Ask(hands, "Take the SD card out of the DVR.");
    if (!dvr->CardIn())
        return Refused("there is no card to take out");
    hands.unit().RemoveCard();
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
