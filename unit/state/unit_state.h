#pragma once

#include <string>

namespace unit {

class VirtualUnit;

// The complete state of the unit, for people and scripts: an indented JSON object. Host thread.
std::string StateJson(VirtualUnit& unit);

}  // namespace unit
