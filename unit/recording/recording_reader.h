#pragma once

#include <optional>
#include <string>

#include "unit/recording/recording.h"

namespace unit {

// Reads a recording. A last line without an end is left out, as a crash tears it off; anything else
// that is not as it was written gives nothing, with "FILE:LINE: what is wrong; what is allowed" in
// `problem`. Any thread.
std::optional<Recording> ReadRecording(const std::string& file, std::string& problem);

}  // namespace unit
