#pragma once

#include "unit/commands/operator.h"

namespace unit {

// The commands by what they act on, a file each.
UnitRows FingerRows();   // tap, press, move, release
UnitRows CardRows();     // card ...
UnitRows DvrRows();      // dvr ..., card report, fault dvr ...
UnitRows PowerRows();    // power, battery, wake
UnitRows RequestRows();  // request ...
UnitRows DriverRows();   // fault driver ...
UnitRows CallRows();     // calls, fault call ..., fault clock ..., fault clear
UnitRows LineRows();     // fault line ..., line ...
UnitRows LookRows();     // texts, screenshot

}  // namespace unit
