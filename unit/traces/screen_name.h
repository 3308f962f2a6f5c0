#pragma once

#include <string>
#include <vector>

namespace unit {

// The step of the wizard whose screen has these texts, by the word of the scenario language
// ("check-card"); "notice" for one over the screen. Recordings have screens and no steps. Empty for
// an empty screen, the first text for an unknown one.
std::string ScreenName(const std::vector<std::string>& texts);

}  // namespace unit
