#include "unit/scenario/language.h"

#include <algorithm>
#include <iterator>

#include "unit/commands/unit_commands.h"

namespace unit {
namespace {

ScenarioRows UnitRowsOfScenarios() {
    ScenarioRows rows;
    for (const UnitTable::Row& row : UnitCommands().rows())
        rows.push_back({row.pattern, row.help,
                        [&row](ScenarioReader& reader, const control::Values& values) {
                            return reader.Add(Act{[&row, values](Stage& stage) {
                                return row.execute(stage.op, values);
                            }});
                        },
                        row.check});
    return rows;
}

}  // namespace

const ScenarioTable& ScenarioLanguage() {
    static const ScenarioTable table([] {
        ScenarioRows all;
        for (const auto rows :
             {SettingRows, StructureRows, UnitRowsOfScenarios, CheckRows, PictureRows})
            std::ranges::move(rows(), std::back_inserter(all));
        return all;
    }());
    return table;
}

}  // namespace unit
