#pragma once

#include "unit/commands/operator.h"

namespace unit {

// The commands of a unit, in one table for panel, scenarios and control socket.
const UnitTable& UnitCommands();

// Its rows by subject.
UnitRows
OperatorRows();        // tap, press, move, release, card, power, battery, wake, request, texts...
UnitRows ClockRows();  // clock
UnitRows DvrRows();    // dvr, fault dvr, line
UnitRows FaultRows();  // calls, fault

}  // namespace unit
