// What a person does at the unit, and what the unit's other applications do.

#include <algorithm>
#include <filesystem>

#include "dvrsim/card_folders.h"
#include "platform/kernel/text.h"
#include "unit/commands/unit_commands.h"
#include "unit/picture/screen_reader.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;
using namespace std::chrono_literals;

constexpr auto kDefaultTap = 150ms;

std::string NoSuchButton(Operator& op, const std::string& caption) {
    const std::vector<std::string> buttons = op.ButtonsOnScreen();
    std::string list;
    for (const std::string& button : buttons)
        list += (list.empty() ? "" : ", ") + control::QuoteWord(button);
    return "there is no button " + control::QuoteWord(caption) + "; the buttons are " +
           (list.empty() ? "all hidden" : list) +
           control::Suggestion(caption, {buttons.begin(), buttons.end()});
}

// Calls `act` with the position of the line's button, or its coordinates.
template <class Act>
Outcome AtPosition(Operator& op, const Values& values, Act act) {
    if (op.busy())
        return Refused("the finger is in the middle of a tap");
    if (!values.Has("BUTTON")) {
        act(POINT{static_cast<LONG>(values.Number("X")), static_cast<LONG>(values.Number("Y"))});
        return Done();
    }
    const std::string caption = values.Text("BUTTON");
    const std::optional<POINT> position = op.FindButton(caption);
    if (!position)
        return Refused(NoSuchButton(op, caption));
    act(*position);
    return Done();
}

Outcome Tap(Operator& op, const Values& values) {
    if (op.finger_down())
        return Refused("the finger is on the screen; release it first");
    return AtPosition(op, values, [&](POINT position) {
        op.Tap(position, values.Duration("DURATION", kDefaultTap));
    });
}

Outcome Press(Operator& op, const Values& values) {
    return AtPosition(op, values, [&](POINT position) { op.Press(position); });
}

Outcome Move(Operator& op, const Values& values) {
    if (!op.finger_down())
        return Refused("the finger is not on the screen; press first");
    return AtPosition(op, values, [&](POINT position) { op.MoveFinger(position); });
}

Outcome Release(Operator& op, const Values&) {
    if (!op.finger_down() || op.busy())
        return Refused("the finger is not on the screen; press first");
    op.Release();
    return Done();
}

// A real DVR's card is inserted and removed by a person, on request.
Outcome Ask(Operator& op, const std::string& request) {
    op.unit().Say(request);
    return Done();
}

Outcome Insert(Operator& op, const std::string& folder, const std::string& card) {
    const dvrsim::Dvr* const dvr = op.unit().dvr().dvr();
    if (!dvr)
        return Ask(op, "Put " + card + " into the DVR.");
    if (dvr->CardIn())
        return Refused("a card is in already; take it out first");
    if (folder.empty())
        return Refused(op.card_problem());
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

Outcome ExternalPower(Operator& op, const Values& values) {
    op.unit().SetExternalPower(values.Chose("on"));
    return Done();
}

Outcome Battery(Operator& op, const Values& values) {
    const auto flag = values.Number("BYTE", op.unit().supply().battery_flag);
    op.unit().SetBattery(static_cast<BYTE>(flag), static_cast<BYTE>(values.Number("PERCENT")));
    return Done();
}

Outcome Wake(Operator& op, const Values&) {
    if (!op.unit().suspended())
        return Refused("the unit is awake");
    op.unit().WakeUp();
    return Done();
}

Outcome Request(Operator& op, const Values& values) {
    const DWORD error = op.unit().power_coordinator().Raise(PowerRequestIn(values));
    return error == ERROR_SUCCESS
               ? Done()
               : Refused("the request cannot be raised, error " + std::to_string(error));
}

Outcome Screenshot(Operator& op, const Values& values) {
    std::string problem;
    if (!WritePng(op.unit().TakePicture(), values.Text("FILE"), problem))
        return Refused(problem);
    return Done();
}

Outcome Texts(Operator& op, const Values&) {
    std::string lines;
    for (const std::wstring& text : ScreenReader(op.unit().Screen()).Texts())
        lines += (lines.empty() ? "" : "\n") + platform::kernel::ToUtf8(text);
    return Done(lines);
}

Outcome End(Operator& op, Operator::Ending ending) {
    return op.AskFor(ending)
               ? Done()
               : Refused(
                     "this unit ends with its scenario; allowed on a unit that runs without one");
}

Outcome Quit(Operator& op, const Values&) {
    return End(op, Operator::Ending::kQuit);
}

Outcome Restart(Operator& op, const Values&) {
    return End(op, Operator::Ending::kRestart);
}

}  // namespace

const PowerRequest& PowerRequestIn(const Values& values) {
    return *std::ranges::find_if(
        PowerRequests(), [&](const PowerRequest& request) { return values.Chose(request.name); });
}

UnitRows OperatorRows() {
    return {
        {"tap at X Y [for DURATION]", "Touches the screen there, by default for 150ms.", Tap},
        {"tap BUTTON [for DURATION]",
         "Touches the middle of the button with that caption, or the close button.", Tap},
        {"press at X Y", "Puts the finger there and leaves it on the screen.", Press},
        {"press BUTTON", "Puts the finger on that button and leaves it on the screen.", Press},
        {"move to X Y", "Moves the finger that is on the screen.", Move},
        {"release", "Takes the finger off the screen.", Release},
        {"card in [FOLDER]",
         "Inserts an SD card into the DVR: that folder of the host, or by default the card with "
         "the update image.",
         CardIn},
        {"card with image VERSION", "Inserts a card whose update image has that version.", CardIn},
        {"card without image", "Inserts a card without an update image.", CardWithoutImage},
        {"card out", "Removes the SD card from the DVR.", CardOut},
        {"power on|off", "Connects or disconnects external power.", ExternalPower},
        {"battery PERCENT [flag BYTE]",
         "Sets the battery's charge, and the flag that the battery driver reports.", Battery},
        {"wake", "Presses the power button of the suspended unit.", Wake},
        {kRequestPattern,
         "Sends that power request to all applications, as the unit's coordinator does; unitctl "
         "waits "
         "for the acknowledgement.",
         Request},
        {"screenshot FILE", "Writes what the screen shows to a PNG file.", Screenshot},
        {"texts", "Lists the texts on the screen.", Texts},
        {"quit", "Closes the program and ends the unit, as SIGTERM does.", Quit},
        {"restart",
         "Closes the program and begins another run on a new unit; commands to its name reach it.",
         Restart},
    };
}

}  // namespace unit
