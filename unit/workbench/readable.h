#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "unit/events/event.h"

namespace unit {

// Texts of the panel, and the filter for them.

// Seconds since the unit's power-on: "23.456".
std::string ReadableTime(std::chrono::microseconds time);

// "suspend request" or "suspend acknowledged" for the long names that the unit's applications use;
// any other name unchanged.
std::string ReadablePowerName(std::string_view name);

// "power status: external power on, battery flag 1", or the name with its parameters.
std::string ReadableBroadcast(const BroadcastPosted& broadcast);

// Whether the text contains all words of the filter, and none of those with a leading "-". ASCII
// letters match in either case.
bool Matches(std::string_view text, std::string_view filter);

}  // namespace unit
