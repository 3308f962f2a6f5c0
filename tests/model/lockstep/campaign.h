#pragma once

#include <cstdint>
#include <string>

#include "tests/model/event.h"

namespace tests::model {

// Runs the sequence, or as much as leads to the first difference, which is returned; empty when
// there is none.
std::string Replay(const Sequence& sequence);

struct Outcome {
    std::uint64_t events = 0;
    std::uint64_t sequences = 0;
    // Empty, or the first difference with what leads to it in as few events as could be found.
    std::string problem;
};

// Runs random sequences, each from its own seed on, until so many events have passed.
Outcome RunCampaign(std::uint64_t events, std::uint64_t seed);

// What should have been reached and was not, by all runs of this process; empty when all was.
std::string NeverReached();

}  // namespace tests::model
