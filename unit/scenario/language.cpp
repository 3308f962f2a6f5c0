#include "unit/scenario/language.h"

#include <algorithm>
#include <iterator>

#include "platform/kernel/text.h"
#include "unit/commands/unit_commands.h"

namespace unit {
namespace {

using control::Values;
using platform::kernel::Mode;

// A row for one of the settings.
ScenarioTable::Row Setting(std::string_view pattern, std::string_view help,
                           void (*set)(StartSettings&, const Values&)) {
    return {pattern, help, [set](ScenarioReader& reader, const Values& values) {
                return reader.Set([&](StartSettings& settings) { set(settings, values); });
            }};
}

ScenarioRows UnitRowsOfScenarios() {
    ScenarioRows rows;
    for (const UnitTable::Row& row : UnitCommands().rows())
        rows.push_back({row.pattern, row.help,
                        [&row](ScenarioReader& reader, const Values& values) {
                            return reader.Add(Action{[&row, values](ScenarioContext& context) {
                                return row.execute(context.op, values);
                            }});
                        },
                        row.check});
    return rows;
}

}  // namespace

void StartSettings::ApplyTo(VirtualUnit::Options& options) const {
    if (seed) {
        options.kernel.seed = *seed;
        options.dvr.dvr.seed = *seed;
    }
    if (mode)
        options.kernel.mode = *mode;
    if (speed)
        options.kernel.speed = *speed;
    options.kernel.preempt = preempt;
    options.kernel.waiting_repaints = waiting_repaints;
    options.external_power = external_power;
    options.missing_drivers = missing_drivers;
    options.missing_bitmaps = missing_bitmaps;
    if (firmware)
        options.dvr.dvr.firmware_version = *firmware;
}

ScenarioRows SettingRows() {
    return {
        Setting(
            "seed SEED",
            "The seed of all random choices of the simulation; the same seed gives the same run.",
            [](StartSettings& settings, const Values& values) {
                settings.seed = static_cast<std::uint32_t>(values.Number("SEED"));
            }),
        Setting("time simulated", "The unit's clock jumps to the next event. This is the default.",
                [](StartSettings& settings, const Values&) { settings.mode = Mode::kSimulated; }),
        Setting("time free-running [speed SPEED]",
                "Real threads and the host's clock, SPEED times as fast.",
                [](StartSettings& settings, const Values& values) {
                    settings.mode = Mode::kFreeRunning;
                    if (values.Has("SPEED"))
                        settings.speed = control::ReadDecimal(values.Text("SPEED"));
                }),
        Setting("preempt",
                "In simulated time, threads can be preempted at any call of the platform; the seed "
                "decides when.",
                [](StartSettings& settings, const Values&) { settings.preempt = true; }),
        Setting("start with waiting repaints",
                "A repaint of another thread's window waits until that thread has painted.",
                [](StartSettings& settings, const Values&) { settings.waiting_repaints = true; }),
        Setting("start without external power", "The unit starts on its battery.",
                [](StartSettings& settings, const Values&) { settings.external_power = false; }),
        Setting("start without driver DRIVER", "The stream driver is missing from the start.",
                [](StartSettings& settings, const Values& values) {
                    settings.missing_drivers.push_back(
                        platform::kernel::FromUtf8(values.Text("DRIVER")));
                }),
        Setting("start without picture NUMBER",
                "The program cannot load the bitmap of that resource number.",
                [](StartSettings& settings, const Values& values) {
                    settings.missing_bitmaps.push_back(static_cast<WORD>(values.Number("NUMBER")));
                }),
        Setting("start with firmware VERSION", "The firmware version of the DVR at the start.",
                [](StartSettings& settings, const Values& values) {
                    settings.firmware = values.Text("VERSION");
                }),
    };
}

ScenarioRows StructureRows() {
    return {
        {"include FILE",
         "Includes the lines of that file. A relative path starts from the folder of this file.",
         [](ScenarioReader& reader, const Values& values) {
             return reader.Include(values.Text("FILE"));
         }},
        {"repeat COUNT", "Repeats the commands up to the matching `end` that many times.",
         [](ScenarioReader& reader, const Values& values) {
             return reader.BeginRepeat(static_cast<std::size_t>(values.Number("COUNT")));
         }},
        {"end", "Ends a `repeat`.",
         [](ScenarioReader& reader, const Values&) { return reader.EndRepeat(); }},
    };
}

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
