#include "unit/scenario/language.h"

namespace unit {

using control::Values;

ScenarioRows StructureRows() {
    return {
        {"include FILE", "Stands for the lines of that file; its path starts from this file's.",
         [](ScenarioReader& reader, const Values& values) {
             return reader.Include(values.Text("FILE"));
         }},
        {"repeat COUNT", "Does what follows, up to the matching `end`, so often.",
         [](ScenarioReader& reader, const Values& values) {
             return reader.BeginRepeat(static_cast<std::size_t>(values.Number("COUNT")));
         }},
        {"end", "Ends a `repeat`.",
         [](ScenarioReader& reader, const Values&) { return reader.EndRepeat(); }},
    };
}

}  // namespace unit
