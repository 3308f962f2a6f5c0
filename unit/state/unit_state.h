#pragma once

#include <string>

namespace unit {

class VirtualUnit;

// Everything about the unit now, for people and scripts: an indented JSON object. Hardware's
// thread.
std::string StateJson(VirtualUnit& unit);

}  // namespace unit
