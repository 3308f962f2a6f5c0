#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dvrsim/dvr.h"

namespace unit {

class VirtualUnit;

// What a hint depends on.
struct HintState {
    // On the unit's screen.
    std::vector<std::wstring> texts;
    bool suspended = false;
    // Of the simulated DVR; empty with a real one.
    std::optional<dvrsim::Dvr::State> dvr{};
    bool card_in = false;
    // A fault makes the update hang.
    bool hangs = false;
};

// The two results that the wizard can show; empty while it shows neither.
enum class Result { kSuccess, kFailure };
std::optional<Result> ShownResult(const std::vector<std::wstring>& texts);

HintState ReadHintState(VirtualUnit& unit);

// What the operator can do next, in one or two sentences.
std::string HintFor(const HintState& state);

}  // namespace unit
