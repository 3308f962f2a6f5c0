#include "platform/kernel/text.h"
#include "unit/scenario/language.h"

namespace unit {
namespace {

using control::Values;
using platform::kernel::Mode;

// A row that makes one of the settings.
ScenarioTable::Row Setting(std::string_view pattern, std::string_view help,
                           void (*set)(StartSettings&, const Values&)) {
    return {pattern, help, [set](ScenarioReader& reader, const Values& values) {
                return reader.Set([&](StartSettings& settings) { set(settings, values); });
            }};
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
        Setting("seed SEED",
                "Where the simulation's chances come from; the same seed gives the same run.",
                [](StartSettings& settings, const Values& values) {
                    settings.seed = static_cast<std::uint32_t>(values.Number("SEED"));
                }),
        Setting("time simulated",
                "The unit's clock jumps to the next thing that happens: what a scenario does "
                "unless told otherwise.",
                [](StartSettings& settings, const Values&) { settings.mode = Mode::kSimulated; }),
        Setting("time free-running [speed SPEED]",
                "Real threads and the host's clock, so many times as fast.",
                [](StartSettings& settings, const Values& values) {
                    settings.mode = Mode::kFreeRunning;
                    if (values.Has("SPEED"))
                        settings.speed = control::ReadDecimal(values.Text("SPEED"));
                }),
        Setting("preempt",
                "In simulated time, lets the seed take the processor from a thread at any call of "
                "the platform.",
                [](StartSettings& settings, const Values&) { settings.preempt = true; }),
        Setting("start with waiting repaints",
                "A repaint of another thread's window waits until that thread has painted.",
                [](StartSettings& settings, const Values&) { settings.waiting_repaints = true; }),
        Setting("start without external power", "The unit starts on its battery.",
                [](StartSettings& settings, const Values&) { settings.external_power = false; }),
        Setting("start without driver DRIVER", "The stream driver is missing from the start on.",
                [](StartSettings& settings, const Values& values) {
                    settings.missing_drivers.push_back(
                        platform::kernel::FromUtf8(values.Text("DRIVER")));
                }),
        Setting("start without picture NUMBER",
                "The program cannot load the bitmap of that resource number.",
                [](StartSettings& settings, const Values& values) {
                    settings.missing_bitmaps.push_back(static_cast<WORD>(values.Number("NUMBER")));
                }),
        Setting("start with firmware VERSION", "What the DVR runs at the start.",
                [](StartSettings& settings, const Values& values) {
                    settings.firmware = values.Text("VERSION");
                }),
    };
}

}  // namespace unit
