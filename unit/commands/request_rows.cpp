#include <algorithm>

#include "unit/commands/command_rows.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome Request(Operator& op, const Values& values) {
    const auto request = std::ranges::find_if(
        PowerRequests(), [&](const PowerRequest& known) { return values.Chose(known.name); });
    const DWORD error = op.unit().power_coordinator().Raise(*request);
    return error == ERROR_SUCCESS
               ? Done()
               : Refused("the request cannot be raised, error " + std::to_string(error));
}

}  // namespace

UnitRows RequestRows() {
    return {{"request suspend|resume|off",
             "Raises that power request to all applications, as the unit's coordinator does.",
             Request}};
}

}  // namespace unit
