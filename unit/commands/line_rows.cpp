#include <deque>

#include "unit/commands/command_rows.h"
#include "unit/line/fault_text.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

constexpr std::size_t kMostFaults = 1000;

// Says the number by which the rule can be cleared.
Outcome AddFault(Operator& op, const Values& values) {
    std::string problem;
    auto rule = ReadFaultRule(values, problem);
    if (!rule)
        return Refused(problem);
    const std::string text = ToText(*rule);
    LineFaults& faults = op.unit().dvr().faults();
    if (faults.List().size() >= kMostFaults)
        return Refused("the line has " + std::to_string(kMostFaults) +
                       " faults already; no more are allowed");
    const int number = faults.Add(*std::move(rule));
    return Done("fault " + std::to_string(number) + ": " + text);
}

std::string WrongFault(const Values& values) {
    std::string problem;
    ReadFaultRule(values, problem);
    return problem;
}

Outcome ListFaults(Operator& op, const Values&) {
    std::string lines;
    for (const LineFaults::Entry& entry : op.unit().dvr().faults().List())
        lines += (lines.empty() ? "fault " : "\nfault ") + std::to_string(entry.number) + ": " +
                 ToText(entry.rule) + ", applied to " + std::to_string(entry.applied) + " of " +
                 std::to_string(entry.matches);
    return Done(lines);
}

Outcome ClearFaults(Operator& op, const Values& values) {
    LineFaults& faults = op.unit().dvr().faults();
    if (!values.Has("NUMBER")) {
        faults.Clear();
        return Done();
    }
    const auto number = static_cast<int>(values.Number("NUMBER"));
    if (faults.Remove(number))
        return Done();
    std::string list;
    for (const LineFaults::Entry& entry : faults.List())
        list += (list.empty() ? "" : ", ") + std::to_string(entry.number);
    return Refused("there is no fault " + std::to_string(number) + " on the line; allowed is " +
                   (list.empty() ? "none now" : "one of " + list));
}

Outcome Plug(Operator& op, const Values& values) {
    op.unit().SetPlugged(values.Chose("plug"));
    return Done();
}

Outcome Inject(Operator& op, const Values& values) {
    op.unit().dvr().Inject(values.Chose("to-unit") ? Direction::kToUnit : Direction::kToDvr,
                           values.Bytes("BYTES"));
    return Done();
}

}  // namespace

UnitRows LineRows() {
    // A row's pattern must outlive the table, which lives to the end.
    static const std::deque<std::string> patterns = [] {
        std::deque<std::string> prefixed;
        for (const FaultPattern& fault : FaultPatterns())
            prefixed.push_back("fault line " + std::string(fault.pattern));
        return prefixed;
    }();
    UnitRows rows;
    for (std::size_t index = 0; index < patterns.size(); ++index)
        rows.push_back({patterns[index], FaultPatterns()[index].help, AddFault, WrongFault});
    rows.push_back({"fault line list", "Lists the faults of the line, and how often each applied.",
                    ListFaults});
    rows.push_back({"fault line clear [NUMBER]",
                    "Takes the line's fault of that number away, or all of them.", ClearFaults});
    rows.push_back({"line unplug|plug", "Pulls the DVR's serial plug, or puts it back.", Plug});
    rows.push_back({"line inject BYTES to-unit|to-dvr",
                    "Puts bytes on the line beside what its ends send; no fault applies to them.",
                    Inject});
    return rows;
}

}  // namespace unit
