#pragma once

#include <functional>
#include <vector>

#include "control/command_table.h"
#include "dvrsim/dvr.h"

namespace dvrsim {

using DvrTable = control::CommandTable<Dvr>;

// What can be done to a simulated DVR by itself: its power, firmware, reports and faults. What goes
// through something else, its reset wire, card slot and line, is for whoever has that.
std::vector<DvrTable::Row> DvrRows();
std::vector<DvrTable::Row> DvrFaultRows();

// The same commands for something that has a DVR: `reach(target)` is a pointer to it, null when
// there is none, which refuses the command with `none`.
template <class Target, class Reach>
std::vector<typename control::CommandTable<Target>::Row> RowsFor(std::vector<DvrTable::Row> rows,
                                                                 Reach reach,
                                                                 std::string_view none) {
    std::vector<typename control::CommandTable<Target>::Row> adapted;
    for (DvrTable::Row& row : rows) {
        auto execute = [reach, none, act = std::move(row.execute)](Target& target,
                                                                   const control::Values& values) {
            Dvr* const dvr = reach(target);
            return dvr ? act(*dvr, values) : control::Refused(std::string(none));
        };
        adapted.push_back({row.pattern, row.help, std::move(execute), row.check});
    }
    return adapted;
}

}  // namespace dvrsim
