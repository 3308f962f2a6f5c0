#include <algorithm>
#include <deque>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "dvrsim/commands/dvr_rows.h"
#include "dvrsim/commands/dvr_state.h"
#include "dvrsim/program/desk.h"

namespace dvrsim {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome Insert(Desk& desk, const std::string& folder) {
    if (folder.empty())
        return Refused(CardBox::kNoSuchCard);
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        return Refused("'" + folder + "' is not a folder");
    return desk.dvr.InsertCard(std::filesystem::absolute(folder, error))
               ? Done()
               : Refused("a card is in already; take it out first");
}

Outcome CardIn(Desk& desk, const Values& values) {
    return Insert(desk, values.Has("FOLDER") ? values.Text("FOLDER") : desk.cards.ImageCard());
}

Outcome CardWithImage(Desk& desk, const Values& values) {
    return Insert(desk, desk.cards.Make(values.Text("VERSION")));
}

Outcome CardWithoutImage(Desk& desk, const Values&) {
    return Insert(desk, desk.cards.Make(std::nullopt));
}

Outcome CardOut(Desk& desk, const Values&) {
    return desk.dvr.RemoveCard() ? Done() : Refused("there is no card to take out");
}

Outcome Reset(Desk& desk, const Values&) {
    if (desk.dvr.GetState() == Dvr::State::kOff)
        return Refused("the DVR is off; power it on");
    desk.dvr.Reset();
    return Done();
}

Outcome Plug(Desk& desk, const Values& values) {
    desk.plugged = values.Chose("plug");
    return Done();
}

Outcome State(Desk& desk, const Values&) {
    serial::Settings settings;
    const bool known = desk.line.ReadSettings(settings);
    nlohmann::ordered_json state = {
        {"time_s", std::chrono::duration<double>(desk.timers.Now()).count()},
        {"dvr", StateOf(desk.dvr)},
        {"line",
         {
             {"path", desk.line.path()},
             {"connected", desk.line.Connected()},
             {"plugged", desk.plugged},
             {"settings", known ? nlohmann::ordered_json(serial::Describe(settings))
                                : nlohmann::ordered_json()},
         }},
    };
    constexpr int kIndent = 2;
    return Done(state.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace));
}

Outcome Help(Desk&, const Values&) {
    std::string text;
    for (const DeskTable::Row& row : DeskCommands().rows()) {
        text += (text.empty() ? "" : "\n") + std::string(row.pattern) + "\n    " +
                std::string(row.help);
    }
    return Done(text);
}

Outcome Quit(Desk& desk, const Values&) {
    desk.quit = true;
    return Done();
}

// The commands of the DVR's folder are told from others by the word "dvr", which goes without
// saying here.
std::vector<DeskTable::Row> OwnWords(std::vector<DeskTable::Row> rows) {
    static std::deque<std::string> patterns;
    constexpr std::string_view kWord = "dvr ";
    for (DeskTable::Row& row : rows) {
        std::string& pattern = patterns.emplace_back(row.pattern);
        if (const std::size_t at = pattern.find(kWord); at != std::string::npos)
            pattern.replace(at, kWord.size(), "[dvr] ");
        row.pattern = pattern;
    }
    return rows;
}

std::vector<DeskTable::Row> Rows() {
    const auto dvr = [](Desk& desk) { return &desk.dvr; };
    std::vector<DeskTable::Row> rows = {
        {"dvr reset", "Resets the DVR, as its reset wire does.", Reset},
        {"card in [FOLDER]", "Puts the SD card in: that folder, or the card with the update image.",
         CardIn},
        {"card with image VERSION", "Puts in a card whose update image has that version.",
         CardWithImage},
        {"card without image", "Puts in a card that holds no update image.", CardWithoutImage},
        {"card out", "Takes the SD card out.", CardOut},
        {"line unplug|plug", "Pulls the DVR's serial plug, or puts it back.", Plug},
    };
    std::ranges::move(RowsFor<Desk>(DvrRows(), dvr, ""), std::back_inserter(rows));
    std::ranges::move(RowsFor<Desk>(DvrFaultRows(), dvr, ""), std::back_inserter(rows));
    const std::vector<DeskTable::Row> last = {
        {"state", "Prints everything about the DVR and its line as JSON.", State},
        {"help", "Lists the commands.", Help},
        {"quit", "Ends the program.", Quit},
    };
    std::ranges::copy(last, std::back_inserter(rows));
    return OwnWords(std::move(rows));
}

}  // namespace

const DeskTable& DeskCommands() {
    static const DeskTable table(Rows());
    return table;
}

}  // namespace dvrsim
