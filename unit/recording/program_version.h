#pragma once

#include <string>

namespace unit {

// The version that the program's resources tell ("1.0.2.0"); "unknown" when they tell none. While
// a unit is there, on its hardware's thread.
std::string ProgramVersion();

}  // namespace unit
