#pragma once

#include <string>
#include <string_view>

namespace unit {

// Everything that a scenario file can say, with an example in full, as Markdown. Made from the
// table that reads the files.
std::string ScenarioReference(std::string_view example);

}  // namespace unit
