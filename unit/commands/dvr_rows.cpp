#include "dvrsim/commands/dvr_commands.h"

#include <algorithm>
#include <iterator>

#include "unit/commands/command_rows.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Values;

constexpr char kNotOurs[] =
    "the DVR is not the simulated one of this unit; what is at the other end of the line takes its "
    "commands there";

Outcome Reset(Operator& op, const Values&) {
    op.unit().ResetDvr();
    return Done();
}

}  // namespace

UnitRows DvrRows() {
    const auto dvr = [](Operator& op) { return op.unit().dvr().dvr(); };
    UnitRows rows = {
        {"dvr reset", "Resets the DVR, as its reset wire does.", Reset},
    };
    for (const auto own : {dvrsim::DvrRows, dvrsim::DvrFaultRows})
        std::ranges::move(dvrsim::RowsFor<Operator>(own(), dvr, kNotOurs),
                          std::back_inserter(rows));
    return rows;
}

}  // namespace unit
