#include "unit/tolvane/update_scenario.h"

// Where update_scenario.S puts the file.
extern "C" const char tolvane_update_scenario_begin[];
extern "C" const char tolvane_update_scenario_end[];

namespace unit {

std::string_view UpdateScenario() {
    return {tolvane_update_scenario_begin, tolvane_update_scenario_end};
}

}  // namespace unit
