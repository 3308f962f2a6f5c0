#pragma once

#include <functional>
#include <vector>

#include "tests/campaign/case.h"

namespace tests::campaign {

// A road, and how many moments it has.
struct Course {
    const Road* road;
    Counts counts{};
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

// So many cases, each of so many of those kinds at moments that the seed chooses.
std::vector<Case> Sample(const std::vector<Course>& courses,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed);

}  // namespace tests::campaign
