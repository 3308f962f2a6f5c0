#include <algorithm>

#include "platform/kernel/call_faults.h"
#include "unit/commands/command_rows.h"

namespace unit {
namespace {

namespace kernel = platform::kernel;
using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome FailCall(Operator&, const Values& values) {
    kernel::CallFault fault;
    fault.call = values.Text("CALL");
    fault.skip = static_cast<std::uint64_t>(values.Number("SKIP"));
    fault.times = values.Chose("always") ? kernel::kForEver
                                         : static_cast<std::uint64_t>(values.Number("COUNT", 1));
    if (values.Has("ERROR"))
        fault.error = static_cast<DWORD>(values.Number("ERROR"));
    const std::string problem = kernel::AddCallFault(fault);
    return problem.empty() ? Done() : Refused(problem);
}

std::string WrongCall(const Values& values) {
    const std::string call = values.Text("CALL");
    const auto names = kernel::FailableCallNames();
    if (!values.Has("CALL") || std::ranges::find(names, call) != names.end())
        return {};
    std::string list;
    for (const std::string_view name : names)
        list += (list.empty() ? "" : ", ") + std::string(name);
    return "the program makes no call '" + call + "' that can fail; allowed is one of " + list;
}

Outcome ListCalls(Operator&, const Values&) {
    std::string lines;
    for (const auto& [call, count] : kernel::CallCounts())
        lines += (lines.empty() ? "" : "\n") + std::string(call) + " " + std::to_string(count);
    return Done(lines);
}

Outcome ClearCalls(Operator&, const Values& values) {
    if (!values.Has("CALL"))
        kernel::ClearCallFaults();
    else if (kernel::ClearCallFaults(values.Text("CALL")) == 0)
        return Refused("no fault of " + values.Text("CALL") + " waits to strike");
    return Done();
}

Outcome JumpClock(Operator& op, const Values& values) {
    if (op.unit().JumpClock(values.Duration("DURATION")))
        return Done();
    return Refused("the clock does not jump that far; allowed are 24000 hours");
}

Outcome ClearAll(Operator& op, const Values&) {
    kernel::ClearCallFaults();
    op.unit().drivers().Clear();
    op.unit().SetHalRefuses(false);
    op.unit().SetBatteryDriverFails(false);
    op.unit().dvr().faults().Clear();
    if (dvrsim::Dvr* const dvr = op.unit().dvr().dvr())
        dvr->SetFaults({});
    return Done();
}

}  // namespace

UnitRows CallRows() {
    // The first row that fits is the one: clear before any name.
    return {
        {"fault call clear [CALL]", "Ends the faults of that call, or of all calls.", ClearCalls,
         WrongCall},
        {"fault call CALL [after SKIP] [times COUNT] [always] [error ERROR]",
         "The program's next calls of that name fail (once unless told), with that last error or "
         "the one that is usual for the call.",
         FailCall, WrongCall},
        {"fault any-call [after SKIP] [times COUNT] [always] [error ERROR]",
         "The program's next calls fail, whichever they are.", FailCall},
        {"calls", "Lists the calls that the program has made and that can fail, with their number.",
         ListCalls},
        {"fault clock jump DURATION",
         "Puts the unit's clock forward: whatever was to come meanwhile is overdue at once.",
         JumpClock},
        {"fault clear", "Ends every fault: of calls, drivers, the HAL, the line and the DVR.",
         ClearAll},
    };
}

}  // namespace unit
