#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "tests/campaign/case.h"
#include "tests/campaign/trial.h"

namespace tests::campaign {

// Tries each case in a process of its own, so many side by side. One that dies, or is not done
// after a time of the host that is ample, is a finding of that case. `done` is called for each, in
// the order in which they are done. To be called while the process has one thread.
void TryApart(const std::vector<Case>& cases, std::size_t side_by_side,
              const std::function<void(const Case&, const Verdict&)>& done);

inline constexpr std::chrono::seconds kTimeOfTheHost{120};

}  // namespace tests::campaign
