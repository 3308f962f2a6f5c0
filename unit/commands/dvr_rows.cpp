#include <algorithm>
#include <chrono>
#include <iterator>

#include "dvrsim/commands/dvr_commands.h"
#include "unit/commands/unit_commands.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

constexpr char kNotSimulated[] =
    "the DVR is not the simulated one of this unit; send the command to what is at the other end "
    "of the line";

Outcome Reset(Operator& op, const Values&) {
    Outcome outcome = Done();
    outcome.later = [result = op.unit().ResetDvr()]() -> std::optional<Outcome> {
        if (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            return std::nullopt;
        return result.get().empty() ? Done() : Refused(result.get());
    };
    return outcome;
}

Outcome Plug(Operator& op, const Values& values) {
    op.unit().dvr().SetPlugged(values.Chose("plug"));
    return Done();
}

Outcome Inject(Operator& op, const Values& values) {
    op.unit().dvr().Inject(values.Chose("to-unit") ? Direction::kToUnit : Direction::kToDvr,
                           values.Bytes("BYTES"));
    return Done();
}

}  // namespace

UnitRows DvrRows() {
    const auto dvr = [](Operator& op) { return op.unit().dvr().dvr(); };
    UnitRows rows = {
        {"dvr reset", "Resets the DVR through its reset wire.", Reset},
        {"line unplug|plug", "Pulls out the DVR's serial plug, or plugs it in.", Plug},
        {"line inject BYTES to-unit|to-dvr",
         "Puts bytes on the line as if its other end had sent them; no fault applies to them.",
         Inject},
    };
    for (const auto own : {dvrsim::DvrRows, dvrsim::DvrFaultRows})
        std::ranges::move(dvrsim::RowsFor<Operator>(own(), dvr, kNotSimulated),
                          std::back_inserter(rows));
    return rows;
}

}  // namespace unit
