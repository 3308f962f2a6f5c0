#pragma once

#include "unit/commands/operator.h"

namespace unit {

// Everything that can be done to a unit, one table for all who do it.
const UnitTable& UnitCommands();

}  // namespace unit
