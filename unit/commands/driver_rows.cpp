#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/commands/command_rows.h"

namespace unit {
namespace {

namespace kernel = platform::kernel;
using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

// Does `act` to the driver of the line.
template <class Act>
Outcome ToDriver(Operator& op, const Values& values, Act act) {
    const std::wstring name = kernel::FromUtf8(values.Text("DRIVER"));
    const std::vector<std::wstring> names = op.unit().drivers().Names();
    if (std::ranges::find(names, name) == names.end()) {
        std::string list;
        for (const std::wstring& known : names)
            list += (list.empty() ? "" : ", ") + kernel::ToUtf8(known);
        return Refused("there is no driver " + values.Text("DRIVER") + "; allowed is one of " +
                       list);
    }
    act(op.unit().drivers(), name);
    return Done();
}

Outcome Hide(Operator& op, const Values& values) {
    const kernel::Time until = values.Chose("late") ? kernel::Now() + values.Duration("DURATION")
                               : values.Chose("missing") ? kernel::kNever
                                                         : kernel::Time{};
    return ToDriver(op, values, [until](DriverRegistry& registry, const std::wstring& name) {
        registry.HideUntil(name, until);
    });
}

Outcome Refuse(Operator& op, const Values& values) {
    std::optional<DWORD> code;
    if (values.Has("CODE"))
        code = static_cast<DWORD>(values.Number("CODE"));
    const auto error = static_cast<DWORD>(values.Number("ERROR", ERROR_GEN_FAILURE));
    const auto times = static_cast<unsigned>(values.Number("COUNT", 1));
    return ToDriver(op, values, [&](DriverRegistry& registry, const std::wstring& name) {
        registry.Refuse(name, code, error, times);
    });
}

Outcome HalRefuses(Operator& op, const Values& values) {
    op.unit().SetHalRefuses(values.Chose("refuses"));
    return Done();
}

Outcome BatteryDriverFails(Operator& op, const Values& values) {
    op.unit().SetBatteryDriverFails(values.Chose("fails"));
    return Done();
}

}  // namespace

UnitRows DriverRows() {
    return {
        {"fault driver DRIVER missing|loaded", "The stream driver cannot be opened, or can again.",
         Hide},
        {"fault driver DRIVER late DURATION", "The driver can be opened only after that time.",
         Hide},
        {"fault driver DRIVER refuses [code CODE] [error ERROR] [times COUNT]",
         "The driver's next requests fail (once unless told), those with that control code alone "
         "or "
         "any; the program is told the error, 31 unless told.",
         Refuse},
        {"fault hal refuses|works", "The HAL refuses to suspend the unit, or does it again.",
         HalRefuses},
        {"fault battery-driver fails|works", "The battery driver does not answer, or does again.",
         BatteryDriverFails},
    };
}

}  // namespace unit
