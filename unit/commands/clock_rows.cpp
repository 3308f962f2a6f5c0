// How fast the unit's time passes.

#include "platform/kernel/scheduler.h"
#include "unit/commands/unit_commands.h"

namespace unit {
namespace {

namespace kernel = platform::kernel;
using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome InSimulatedTime() {
    return Refused("the clock of a simulated unit has no pace; allowed on a free-running unit");
}

// Whoever pauses the clock needs a way to resume it.
Outcome Pausing(Operator& op, bool (*pause)(VirtualUnit&)) {
    if (op.unit().kernel_options().mode == kernel::Mode::kSimulated)
        return InSimulatedTime();
    if (!op.may_end())
        return Refused(
            "nothing could resume the clock; allowed on a unit that runs without a scenario");
    pause(op.unit());
    return Done();
}

Outcome Pause(Operator& op, const Values&) {
    return Pausing(op, [](VirtualUnit& unit) { return unit.PauseClock(); });
}

Outcome Step(Operator& op, const Values&) {
    return Pausing(op, [](VirtualUnit& unit) { return unit.StepClock({}); });
}

Outcome Resume(Operator& op, const Values&) {
    return op.unit().ResumeClock() ? Done() : InSimulatedTime();
}

Outcome SetSpeed(Operator&, const Values& values) {
    return kernel::SetClockSpeed(*control::ReadDecimal(values.Text("SPEED"))) ? Done()
                                                                              : InSimulatedTime();
}

}  // namespace

UnitRows ClockRows() {
    return {
        {"clock pause",
         "The time of a free-running unit stands, and with it all limits and bytes on the line, "
         "until `clock resume`.",
         Pause},
        {"clock resume", "The unit's time passes again.", Resume},
        {kStepPattern,
         "The unit's time passes until the next event at an external interface and then stands; "
         "unitctl waits for the event and prints it.",
         Step},
        {"clock speed SPEED",
         "A free-running unit's time passes SPEED times as fast as the host's.", SetSpeed},
    };
}

}  // namespace unit
