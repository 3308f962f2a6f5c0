#include <algorithm>
#include <deque>
#include <iterator>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/commands/unit_commands.h"
#include "unit/line/fault_text.h"

namespace unit {
namespace {

namespace kernel = platform::kernel;
using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

constexpr std::size_t kMaxLineFaults = 1000;

// Joins texts with a separator.
std::string Join(const std::vector<std::string>& texts, const char* separator) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : separator) + text;
    return joined;
}

Outcome FailCall(Operator&, const Values& values) {
    kernel::CallFault fault;
    fault.call = values.Text("CALL");
    fault.skip = static_cast<std::uint64_t>(values.Number("SKIP"));
    fault.times = values.Chose("always") ? kernel::kForEver
                                         : static_cast<std::uint64_t>(values.Number("COUNT", 1));
    if (values.Has("ERROR"))
        fault.error = static_cast<DWORD>(values.Number("ERROR"));
    const std::string problem = Faults::FailCall(fault);
    return problem.empty() ? Done() : Refused(problem);
}

std::string CheckCall(const Values& values) {
    const std::string call = values.Text("CALL");
    const auto names = kernel::FailableCallNames();
    if (!values.Has("CALL") || std::ranges::find(names, call) != names.end())
        return {};
    return "the program makes no call '" + call + "' that can fail; allowed is one of " +
           Join({names.begin(), names.end()}, ", ") +
           control::Suggestion(call, {names.begin(), names.end()});
}

Outcome ListCalls(Operator&, const Values&) {
    std::vector<std::string> lines;
    for (const auto& [call, count] : kernel::CallCounts())
        lines.push_back(std::string(call) + " " + std::to_string(count));
    return Done(Join(lines, "\n"));
}

Outcome ClearCalls(Operator&, const Values& values) {
    if (!values.Has("CALL"))
        kernel::ClearCallFaults();
    else if (kernel::ClearCallFaults(values.Text("CALL")) == 0)
        return Refused("no fault of " + values.Text("CALL") + " is set");
    return Done();
}

Outcome JumpClock(Operator& op, const Values& values) {
    if (op.unit().JumpClock(values.Duration("DURATION")))
        return Done();
    return Refused("the clock cannot jump that far; allowed are 24000 hours");
}

// Calls `set` with the line's driver.
template <class Set>
Outcome ForDriver(Operator& op, const Values& values, Set set) {
    const std::wstring name = kernel::FromUtf8(values.Text("DRIVER"));
    const std::vector<std::wstring> names = op.unit().drivers().Names();
    if (std::ranges::find(names, name) == names.end()) {
        std::vector<std::string> list;
        std::ranges::transform(names, std::back_inserter(list), kernel::ToUtf8);
        return Refused("there is no driver " + values.Text("DRIVER") + "; allowed is one of " +
                       Join(list, ", ") +
                       control::Suggestion(values.Text("DRIVER"), {list.begin(), list.end()}));
    }
    set(op.unit().faults(), name);
    return Done();
}

Outcome HideDriver(Operator& op, const Values& values) {
    const kernel::Time until = values.Chose("late") ? kernel::Now() + values.Duration("DURATION")
                               : values.Chose("missing") ? kernel::kNever
                                                         : kernel::Time{};
    return ForDriver(op, values, [until](Faults& faults, const std::wstring& name) {
        faults.HideDriver(name, until);
    });
}

Outcome RefuseRequests(Operator& op, const Values& values) {
    DriverRefusal refusal;
    if (values.Has("CODE"))
        refusal.code = static_cast<DWORD>(values.Number("CODE"));
    refusal.error = static_cast<DWORD>(values.Number("ERROR", ERROR_GEN_FAILURE));
    refusal.times = static_cast<unsigned>(values.Number("COUNT", 1));
    return ForDriver(op, values, [&](Faults& faults, const std::wstring& name) {
        faults.RefuseRequests(name, refusal);
    });
}

Outcome HalRefuses(Operator& op, const Values& values) {
    op.unit().faults().SetHalRefuses(values.Chose("refuses"));
    return Done();
}

Outcome BatteryDriverFails(Operator& op, const Values& values) {
    op.unit().faults().SetBatteryDriverFails(values.Chose("fails"));
    return Done();
}

// Reports the number by which the rule can be cleared.
Outcome AddLineFault(Operator& op, const Values& values) {
    std::string problem;
    auto rule = ReadFaultRule(values, problem);
    if (!rule)
        return Refused(problem);
    const std::string text = ToText(*rule);
    LineFaults& faults = op.unit().faults().line();
    if (faults.List().size() >= kMaxLineFaults)
        return Refused("the line has " + std::to_string(kMaxLineFaults) +
                       " faults already; no more are allowed");
    const int number = faults.Add(*std::move(rule));
    return Done("fault " + std::to_string(number) + ": " + text);
}

std::string CheckLineFault(const Values& values) {
    std::string problem;
    ReadFaultRule(values, problem);
    return problem;
}

Outcome ListLineFaults(Operator& op, const Values&) {
    std::vector<std::string> lines;
    for (const LineFaults::Entry& entry : op.unit().faults().line().List())
        lines.push_back("fault " + std::to_string(entry.number) + ": " + ToText(entry.rule) +
                        ", applied to " + std::to_string(entry.applied) + " of " +
                        std::to_string(entry.matches));
    return Done(Join(lines, "\n"));
}

Outcome ClearLineFaults(Operator& op, const Values& values) {
    LineFaults& faults = op.unit().faults().line();
    if (!values.Has("NUMBER")) {
        faults.Clear();
        return Done();
    }
    const auto number = static_cast<int>(values.Number("NUMBER"));
    if (faults.Remove(number))
        return Done();
    std::vector<std::string> numbers;
    for (const LineFaults::Entry& entry : faults.List())
        numbers.push_back(std::to_string(entry.number));
    return Refused("there is no fault " + std::to_string(number) + " on the line; allowed is " +
                   (numbers.empty() ? "none now" : "one of " + Join(numbers, ", ")));
}

Outcome ListAll(Operator& op, const Values&) {
    return Done(Join(op.unit().faults().List(), "\n"));
}

Outcome ClearAll(Operator& op, const Values&) {
    op.unit().faults().Clear();
    return Done();
}

}  // namespace

UnitRows FaultRows() {
    // The table, which lives to the end, refers to these patterns.
    static const std::deque<std::string> line_patterns = [] {
        std::deque<std::string> prefixed;
        for (const FaultPattern& fault : FaultPatterns())
            prefixed.push_back("fault line " + std::string(fault.pattern));
        return prefixed;
    }();
    // The first row that matches a line executes it: clear before any name.
    UnitRows rows = {
        {"fault list", "Lists every fault that is set, as the command that sets it.", ListAll},
        {"fault clear", "Clears every fault: of calls, drivers, the HAL, the line and the DVR.",
         ClearAll},
        {"fault call clear [CALL]", "Clears the faults of that call, or of all calls.", ClearCalls,
         CheckCall},
        {"fault call CALL [after SKIP] [times COUNT] [always] [error ERROR]",
         "The program's next calls of that name fail, by default once and with the call's usual "
         "last error.",
         FailCall, CheckCall},
        {"fault any-call [after SKIP] [times COUNT] [always] [error ERROR]",
         "The program's next calls fail, whichever they are.", FailCall},
        {"calls", "Lists the calls of the program that can fail, and how often it made each.",
         ListCalls},
        {"fault clock jump DURATION",
         "Puts the unit's clock forward; everything scheduled in between is overdue at once.",
         JumpClock},
        {"fault driver DRIVER missing|loaded", "The stream driver cannot be opened, or can again.",
         HideDriver},
        {"fault driver DRIVER late DURATION", "The driver can be opened only after that time.",
         HideDriver},
        {"fault driver DRIVER refuses [code CODE] [error ERROR] [times COUNT]",
         "The driver's next requests fail: by default one, with any control code, with error 31.",
         RefuseRequests},
        {"fault hal refuses|works", "The HAL refuses to suspend the unit, or suspends it again.",
         HalRefuses},
        {"fault battery-driver fails|works",
         "The battery driver does not respond, or responds again.", BatteryDriverFails},
        {"fault line list", "Lists the faults of the line, and how often each applied.",
         ListLineFaults},
        {"fault line clear [NUMBER]", "Clears the line's fault of that number, or all of them.",
         ClearLineFaults},
    };
    for (std::size_t index = 0; index < line_patterns.size(); ++index)
        rows.push_back(
            {line_patterns[index], FaultPatterns()[index].help, AddLineFault, CheckLineFault});
    return rows;
}

}  // namespace unit
