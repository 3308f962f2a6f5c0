#include "unit/commands/command_rows.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;
using namespace std::chrono_literals;

constexpr auto kUsualTap = 150ms;

POINT PlaceIn(const Values& values) {
    return {static_cast<LONG>(values.Number("X")), static_cast<LONG>(values.Number("Y"))};
}

// Does `act` where the line's button or place is.
template <class Act>
Outcome AtPlace(Operator& op, const Values& values, Act act) {
    if (op.busy())
        return Refused("the finger is in the middle of a tap");
    if (!values.Has("BUTTON")) {
        act(PlaceIn(values));
        return Done();
    }
    const std::string caption = values.Text("BUTTON");
    const std::optional<POINT> place = op.FindButton(caption);
    if (!place)
        return Refused("there is no " + control::QuoteWord(caption) + " on the screen; there is " +
                       op.WhatStands());
    act(*place);
    return Done();
}

Outcome Tap(Operator& op, const Values& values) {
    if (op.finger_down())
        return Refused("the finger is on the screen; release it first");
    return AtPlace(op, values,
                   [&](POINT place) { op.Tap(place, values.Duration("DURATION", kUsualTap)); });
}

Outcome Press(Operator& op, const Values& values) {
    return AtPlace(op, values, [&](POINT place) { op.Press(place); });
}

Outcome Move(Operator& op, const Values& values) {
    if (!op.finger_down())
        return Refused("the finger is not on the screen; press first");
    return AtPlace(op, values, [&](POINT place) { op.MoveFinger(place); });
}

Outcome Release(Operator& op, const Values&) {
    if (!op.finger_down() || op.busy())
        return Refused("the finger is not on the screen; press first");
    op.Release();
    return Done();
}

}  // namespace

UnitRows FingerRows() {
    return {
        {"tap at X Y [for DURATION]", "Touches the screen there, for 150ms unless told.", Tap},
        {"tap BUTTON [for DURATION]",
         "Touches the middle of the button with that caption, or the close button.", Tap},
        {"press at X Y", "Puts the finger there and leaves it on the screen.", Press},
        {"press BUTTON", "Puts the finger on that button and leaves it on the screen.", Press},
        {"move to X Y", "Moves the finger that is on the screen.", Move},
        {"release", "Takes the finger off the screen.", Release},
    };
}

}  // namespace unit
