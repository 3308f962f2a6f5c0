#pragma once

#include <string_view>

namespace unit {

// The text of update.scenario, the driver who walks the whole update.
std::string_view UpdateScenario();

}  // namespace unit
