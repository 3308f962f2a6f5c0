#pragma once

#include <functional>
#include <vector>

#include "tests/campaign/case.h"

namespace tests::campaign {

// A flow, and how many triggers it has.
struct Baseline {
    const Flow* flow;
    Counts counts{};
};

// Drives each flow once without faults. What is wrong already then is told to `find`.
std::vector<Baseline> MeasureBaselines(
    const std::vector<const Flow*>& flows, std::size_t side_by_side,
    const std::function<void(const Case&, const std::string&)>& find);

// A part of a flow: triggers of any sort with these numbers, both included.
struct Range {
    std::uint64_t first = 1;
    std::uint64_t last = ~std::uint64_t{0};
};

// Each of those kinds at each `every`-th trigger of each sort that it fits, from a first one that
// the seed chooses.
std::vector<Case> Sweep(const std::vector<Baseline>& baselines,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        const Range& range, std::uint32_t seed);

// So many cases, each of so many of those kinds at triggers that the seed chooses.
std::vector<Case> Sample(const std::vector<Baseline>& baselines,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed);

}  // namespace tests::campaign
