#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/model/event.h"

namespace tests::model {

// Runs the program and the reference model side by side from the sequence's start. Each event that
// `next` gives goes to both, and both must show the same afterwards; without an event the window is
// closed. Returns the first difference; empty when there is none.
std::string RunBoth(const Sequence& sequence,
                    const std::function<std::optional<Event>(const WizardModel&)>& next);

}  // namespace tests::model
