#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "unit/events/event.h"

namespace unit {

// Words for what the panel shows.

// "23.456", seconds of the unit since its power-on.
std::string ReadableTime(std::chrono::microseconds time);

// "suspend request", "suspend acknowledged" for the long names that the unit's applications use;
// the name itself for any other.
std::string ReadablePowerName(std::string_view name);

// "power status: external power on, battery flag 1", or the name with its parameters.
std::string ReadableBroadcast(const BroadcastPosted& broadcast);

}  // namespace unit
