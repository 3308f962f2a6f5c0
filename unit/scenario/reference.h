#pragma once

#include <string>
#include <string_view>

namespace unit {

// The reference of the scenario language as Markdown, with a complete example. Generated from the
// table that reads scenarios.
std::string ScenarioReference(std::string_view example);

}  // namespace unit
