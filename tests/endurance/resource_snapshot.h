#pragma once

#include <cstddef>
#include <string>

namespace tests {

// What this process holds between two runs.
struct ResourceSnapshot {
    std::size_t threads = 0;
    std::size_t descriptors = 0;
    std::size_t allocated = 0;  // bytes
    std::size_t resident = 0;   // bytes

    static ResourceSnapshot Take();
    std::string Text() const;
};

// Empty, or what has grown beyond what caches that fill up and fragments explain.
std::string Growth(const ResourceSnapshot& before, const ResourceSnapshot& after);

}  // namespace tests
