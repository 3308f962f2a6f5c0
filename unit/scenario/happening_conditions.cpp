#include "platform/kernel/text.h"
#include "unit/scenario/happening_condition.h"

namespace unit {
namespace {

using control::Values;
using Call = DriverCalled::Call;

bool IsLogged(const LineLogged& line, const Values& values) {
    return line.text.find(values.Text("TEXT")) != std::string::npos;
}

template <class Number>
bool IsOrOpen(const Values& values, std::string_view name, Number number) {
    return !values.Has(name) || static_cast<std::uint64_t>(values.Number(name)) == number;
}

bool IsPosted(const BroadcastPosted& broadcast, const Values& values) {
    return broadcast.name.find(platform::kernel::FromUtf8(values.Text("NAME"))) !=
               std::wstring::npos &&
           IsOrOpen(values, "WPARAM", broadcast.wparam) &&
           IsOrOpen(values, "LPARAM", static_cast<std::uint64_t>(broadcast.lparam));
}

bool IsCalled(const DriverCalled& call, const Values& values) {
    if (call.driver != platform::kernel::FromUtf8(values.Text("DRIVER")))
        return false;
    if (values.Chose("refuses"))
        return call.error != ERROR_SUCCESS && IsOrOpen(values, "CODE", call.code) &&
               IsOrOpen(values, "ERROR", call.error);
    const Call wanted = values.Chose("opened")   ? Call::kOpen
                        : values.Chose("closed") ? Call::kClose
                                                 : Call::kControl;
    return call.call == wanted && call.error == ERROR_SUCCESS &&
           IsOrOpen(values, "CODE", call.code);
}

bool IsApplied(const FaultApplied& fault, const Values& values) {
    return fault.text.find(values.Text("TEXT")) != std::string::npos;
}

}  // namespace

std::vector<Condition> HappeningConditions() {
    return {
        FrameCondition(),
        About<LineLogged>("log TEXT", "The program printed a line with that in it.", IsLogged),
        About<BroadcastPosted>("broadcast NAME [wparam WPARAM] [lparam LPARAM]",
                               "A message whose name has that in it was posted to all windows.",
                               IsPosted),
        About<DriverCalled>("driver DRIVER opened|closed",
                            "The program opened or closed the driver.", IsCalled),
        About<DriverCalled>("driver DRIVER asked [code CODE]",
                            "The driver did a request of the program.", IsCalled),
        About<DriverCalled>("driver DRIVER refuses [code CODE] [error ERROR]",
                            "The program could not open the driver, or a request failed.",
                            IsCalled),
        About<FaultApplied>("line fault [TEXT]",
                            "A fault of the line struck; its message has that in it.", IsApplied),
    };
}

}  // namespace unit
