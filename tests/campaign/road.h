#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "tests/rig/car_driver.h"
#include "unit/board/virtual_unit.h"

namespace tests::campaign {

// A way through the wizard, with what is wrong around it from the beginning.
struct Road {
    std::string_view name;
    // Where the road ends when nothing else goes wrong.
    CarDriver::End end;
    void (*prepare)(unit::VirtualUnit::Options& options);
    // Drives to the end; nothing when the program ended on the way or no end was found.
    std::optional<CarDriver::End> (*drive)(WizardRun& run, CarDriver& driver);
};

std::span<const Road> Roads();

// An update of a few seconds and a few reports.
void Hurry(dvrsim::Timings& timings, dvrsim::Faults& faults);

// No drive takes longer, whatever has happened.
inline constexpr std::chrono::seconds kLongestDrive{400};

}  // namespace tests::campaign
