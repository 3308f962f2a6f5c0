#include <algorithm>
#include <deque>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "dvrsim/commands/dvr_commands.h"
#include "dvrsim/commands/dvr_state.h"
#include "dvrsim/program/commands.h"

namespace dvrsim {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome Insert(Context& context, const std::string& folder) {
    if (folder.empty())
        return Refused(context.cards.problem());
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        return Refused("'" + folder + "' is not a folder");
    return context.dvr.InsertCard(std::filesystem::absolute(folder, error))
               ? Done()
               : Refused("a card is in already; take it out first");
}

Outcome CardIn(Context& context, const Values& values) {
    return Insert(context,
                  values.Has("FOLDER") ? values.Text("FOLDER") : context.cards.ImageCard());
}

Outcome CardWithImage(Context& context, const Values& values) {
    return Insert(context, context.cards.Make(values.Text("VERSION")));
}

Outcome CardWithoutImage(Context& context, const Values&) {
    return Insert(context, context.cards.Make(std::nullopt));
}

Outcome CardOut(Context& context, const Values&) {
    return context.dvr.RemoveCard() ? Done() : Refused("there is no card to take out");
}

Outcome Reset(Context& context, const Values&) {
    if (context.dvr.GetState() == Dvr::State::kOff)
        return Refused("the DVR is off; power it on");
    context.dvr.Reset();
    return Done();
}

Outcome Plug(Context& context, const Values& values) {
    context.plugged = values.Chose("plug");
    return Done();
}

Outcome State(Context& context, const Values&) {
    serial::Settings settings;
    const bool known = context.line.ReadSettings(settings);
    nlohmann::ordered_json state = {
        {"time_s", std::chrono::duration<double>(context.timers.Now()).count()},
        {"dvr", StateOf(context.dvr)},
        {"line",
         {
             {"path", context.line.path()},
             {"connected", context.line.Connected()},
             {"plugged", context.plugged},
             {"settings", known ? nlohmann::ordered_json(serial::Describe(settings))
                                : nlohmann::ordered_json()},
         }},
    };
    constexpr int kIndent = 2;
    return Done(state.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace));
}

Outcome Help(Context&, const Values&) {
    std::string text;
    for (const ProgramTable::Row& row : ProgramCommands().rows())
        text += (text.empty() ? "" : "\n") + std::string(row.pattern) + "\n    " +
                std::string(row.help);
    return Done(text);
}

Outcome Quit(Context& context, const Values&) {
    context.quit = true;
    return Done();
}

// The DVR's own commands start with "dvr", which distinguishes them in a unit. Here it is optional.
std::vector<ProgramTable::Row> MakeDvrOptional(std::vector<ProgramTable::Row> rows) {
    static std::deque<std::string> patterns;
    constexpr std::string_view kWord = "dvr ";
    for (ProgramTable::Row& row : rows) {
        std::string& pattern = patterns.emplace_back(row.pattern);
        if (const std::size_t at = pattern.find(kWord); at != std::string::npos)
            pattern.replace(at, kWord.size(), "[dvr] ");
        row.pattern = pattern;
    }
    return rows;
}

std::vector<ProgramTable::Row> Rows() {
    const auto dvr = [](Context& context) { return &context.dvr; };
    std::vector<ProgramTable::Row> rows = {
        {"dvr reset", "Resets the DVR, as the reset wire does.", Reset},
        {"card in [FOLDER]", "Inserts the SD card: that folder, or the card with the update image.",
         CardIn},
        {"card with image VERSION", "Inserts a card with an update image of that version.",
         CardWithImage},
        {"card without image", "Inserts a card without an update image.", CardWithoutImage},
        {"card out", "Removes the SD card.", CardOut},
        {"line unplug|plug", "Unplugs the DVR from the line, or plugs it in again.", Plug},
    };
    std::ranges::move(RowsFor<Context>(DvrRows(), dvr, ""), std::back_inserter(rows));
    std::ranges::move(RowsFor<Context>(DvrFaultRows(), dvr, ""), std::back_inserter(rows));
    const std::vector<ProgramTable::Row> last = {
        {"state", "Prints the state of the DVR and its line as JSON.", State},
        {"help", "Lists the commands.", Help},
        {"quit", "Ends the program.", Quit},
    };
    std::ranges::copy(last, std::back_inserter(rows));
    return MakeDvrOptional(std::move(rows));
}

}  // namespace

const ProgramTable& ProgramCommands() {
    static const ProgramTable table(Rows());
    return table;
}

}  // namespace dvrsim
