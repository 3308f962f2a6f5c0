#pragma once

#include <string>

namespace control {

// Which build this is: "0.7.0 (commit 1a2b3c4, Release)".
std::string BuildInfo();

}  // namespace control
