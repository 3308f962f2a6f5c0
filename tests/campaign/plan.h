#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/campaign/case.h"

namespace tests::campaign {

// A road, and how many moments it has.
struct Course {
    const Road* road;
    std::uint64_t calls;
    std::uint64_t frames;
    std::uint64_t bytes;
};

// Drives each road once without faults. What is wrong already then is told to `find`.
std::vector<Course> Survey(const std::vector<const Road*>& roads, std::size_t side_by_side,
                           const std::function<void(const Case&, const std::string&)>& find);

// A part of a road: moments of any sort with these numbers, both included.
struct Stretch {
    std::uint64_t first = 1;
    std::uint64_t last = ~std::uint64_t{0};
};

// Each of those kinds at each `every`-th moment of each sort that it fits, from a first one that
// the seed chooses.
std::vector<Case> Sweep(const std::vector<Course>& courses,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        const Stretch& stretch, std::uint32_t seed);

// So many of those kinds on each road, the next road going on where the one before it ended, each
// at a moment that the seed chooses.
std::vector<Case> Sample(const std::vector<Course>& courses,
                         const std::vector<const FaultKind*>& kinds, std::size_t on_each,
                         std::uint32_t seed);

// Two of those kinds at moments that the seed chooses, so many times.
std::vector<Case> Pairs(const std::vector<Course>& courses,
                        const std::vector<const FaultKind*>& kinds, std::size_t count,
                        std::uint32_t seed);

}  // namespace tests::campaign
