#pragma once

#include <chrono>
#include <string>

#include "unit/recording/recording.h"

namespace unit {

// How a moment stands in a recording, without its time: "finger down 400 440".
std::string MomentText(const Moment& moment);

// What the program asked of a driver, without what it was told: "driver DVR1: control 0x0881 02".
std::string RequestText(const DriverCalled& call);

// Seconds with all six decimals: "21.704512".
std::string TimeText(std::chrono::microseconds time);

// A digest as 16 hexadecimal digits.
std::string DigestText(std::uint64_t digest);

// The lines of the header, from the first one to "begin", each with its end.
std::string HeaderText(const RecordingHeader& header);

}  // namespace unit
