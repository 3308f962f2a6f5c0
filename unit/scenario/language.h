#pragma once

#include <string_view>
#include <vector>

#include "unit/scenario/scenario_reader.h"

namespace unit {

using ScenarioTable = control::CommandTable<ScenarioReader>;
using ScenarioRows = std::vector<ScenarioTable::Row>;

// The scenario's own commands by what they are for, a file each.
ScenarioRows SettingRows();    // seed, time, start ...
ScenarioRows StructureRows();  // include, repeat, end
ScenarioRows CheckRows();      // wait, expect, forget
ScenarioRows PictureRows();    // picture, expect screen, say

// Everything that a line of a scenario may be: the above, and all that can be done to a unit.
const ScenarioTable& ScenarioLanguage();

}  // namespace unit
