#pragma once

#include <functional>
#include <vector>

#include "tests/campaign/case.h"

namespace tests::campaign {

// A flow without faults, and how many triggers it has.
struct Baseline {
    const Flow* flow;
    Counts counts{};
};

// Runs each flow once without faults. `find` gets what is wrong already then.
std::vector<Baseline> MeasureBaselines(
    const std::vector<const Flow*>& flows, std::size_t side_by_side,
    const std::function<void(const Case&, const std::string&)>& find);

// The numbers of triggers, both included.
struct Range {
    std::uint64_t first = 1;
    std::uint64_t last = ~std::uint64_t{0};
};

// Each kind at each `every`-th trigger of each sort that it fits, from a first one that the seed
// chooses.
std::vector<Case> Sweep(const std::vector<Baseline>& baselines,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        const Range& range, std::uint32_t seed);

// So many cases with so many faults each, of kinds and at triggers that the seed chooses.
std::vector<Case> Sample(const std::vector<Baseline>& baselines,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed);

}  // namespace tests::campaign
