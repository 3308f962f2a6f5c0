#pragma once

#include <chrono>
#include <string>

namespace unit {

// Time of day in the car: the unit was powered on at dusk of a fixed day, so that the same run has
// the same clocks in it. "2014-09-01", "18:30:20" for 20 s after power-on.
std::string CarDate(std::chrono::microseconds since_power_on);
std::string CarTime(std::chrono::microseconds since_power_on);

}  // namespace unit
