#include "platform/kernel/text.h"
#include "unit/scenario/conditions.h"

namespace unit {
namespace {

using control::Values;
using Call = DriverCalled::Call;

template <class Kind, class... Kinds>
constexpr std::size_t IndexIn(const std::variant<Kinds...>*) {
    std::size_t index = 0;
    const bool found = ((std::is_same_v<Kind, Kinds> || (++index, false)) || ...);
    return found ? index : sizeof...(Kinds);
}

// A condition about one kind of happening.
template <class Kind>
Condition About(std::string_view pattern, std::string_view help,
                bool (*matches)(const Kind&, const Values&)) {
    Condition condition{pattern, help};
    condition.kind = IndexIn<Kind>(static_cast<const Happening*>(nullptr));
    condition.matches = [matches](const Happening& happening, const Values& values) {
        const Kind* const kind = std::get_if<Kind>(&happening);
        return kind && matches(*kind, values);
    };
    return condition;
}

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

}  // namespace

std::vector<Condition> HappeningConditions() {
    return {
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
    };
}

}  // namespace unit
