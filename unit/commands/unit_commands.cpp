#include "unit/commands/unit_commands.h"

#include <algorithm>
#include <iterator>

namespace unit {

const UnitTable& UnitCommands() {
    static const UnitTable table([] {
        UnitRows all;
        for (const auto rows : {OperatorRows, ClockRows, DvrRows, FaultRows})
            std::ranges::move(rows(), std::back_inserter(all));
        return all;
    }());
    return table;
}

}  // namespace unit
