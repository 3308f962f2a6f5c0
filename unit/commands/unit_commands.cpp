#include "unit/commands/unit_commands.h"

#include <iterator>

#include "unit/commands/command_rows.h"

namespace unit {

const UnitTable& UnitCommands() {
    static const UnitTable table([] {
        UnitRows all;
        for (const auto rows : {FingerRows, CardRows, DvrRows, PowerRows, RequestRows, DriverRows,
                                CallRows, LineRows, LookRows})
            std::ranges::move(rows(), std::back_inserter(all));
        return all;
    }());
    return table;
}

}  // namespace unit
