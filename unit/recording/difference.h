#pragma once

#include <chrono>
#include <string>

namespace unit {

// Where a replay and its recording part.
struct Difference {
    std::string what{};  // "frame"

    // What was recorded, decoded; nothing, when the recording has no more of the kind.
    std::string recorded{};
    std::chrono::microseconds recorded_time{};
    int line = 0;  // of the recording

    // What came instead, decoded; nothing, when nothing did.
    std::string came{};
    std::chrono::microseconds time{};
};

}  // namespace unit
