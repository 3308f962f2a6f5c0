#pragma once

#include <string_view>
#include <vector>

#include "unit/scenario/scenario_reader.h"

namespace unit {

using ScenarioTable = control::CommandTable<ScenarioReader>;
using ScenarioRows = std::vector<ScenarioTable::Row>;

// The scenario's own commands by purpose.
ScenarioRows SettingRows();    // seed, time, start ...
ScenarioRows StructureRows();  // include, repeat, end
ScenarioRows CheckRows();      // wait, expect, forget
ScenarioRows PictureRows();    // picture, expect screen, say

// All commands of scenarios: the above, and those of the unit.
const ScenarioTable& ScenarioLanguage();

}  // namespace unit
