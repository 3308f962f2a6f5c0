#pragma once

#include <functional>
#include <vector>

#include "control/command_table.h"
#include "dvrsim/dvr.h"

namespace dvrsim {

using DvrTable = control::CommandTable<Dvr>;

// The commands of a simulated DVR alone: its power, firmware, indications and faults. The commands
// for its reset wire, card slot and line belong to the program that has those.
std::vector<DvrTable::Row> DvrRows();
std::vector<DvrTable::Row> DvrFaultRows();

// The commands that set these faults.
std::vector<std::string> FaultCommands(const Faults& faults);

// The same commands for a target that has a DVR. `reach(target)` returns a pointer to it, or null,
// which refuses the command with `none`.
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
