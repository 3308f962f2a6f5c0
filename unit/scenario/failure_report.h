#pragma once

#include <string>

#include "unit/scenario/stage.h"

namespace unit {

// Saves into the stage's folder what shows why a run failed: its message with the seed, the unit's
// state, the screen, the debug output and everything else that happened. Returns one line that
// tells where, or why it could not.
std::string SaveFailure(Stage& stage, const std::string& problem);

}  // namespace unit
