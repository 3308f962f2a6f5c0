#pragma once

#include <chrono>
#include <string>

namespace unit {

// Date and time of day in the car, for the unit's time: "2014-09-01" and "18:30:20" at 20 s. The
// unit is always powered on at the same date and time, so that every run shows the same clocks.
std::string CarDate(std::chrono::microseconds since_power_on);
std::string CarTime(std::chrono::microseconds since_power_on);

}  // namespace unit
