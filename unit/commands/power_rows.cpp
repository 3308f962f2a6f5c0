#include "unit/commands/command_rows.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

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

}  // namespace

UnitRows PowerRows() {
    return {
        {"power on|off", "Connects external power or takes it away.", ExternalPower},
        {"battery PERCENT [flag BYTE]",
         "Sets the battery's charge, and the flag that the battery driver reports.", Battery},
        {"wake", "Presses the power button of the suspended unit.", Wake},
    };
}

}  // namespace unit
