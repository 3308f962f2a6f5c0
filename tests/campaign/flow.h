#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "tests/unit_harness/car_driver.h"
#include "unit/board/virtual_unit.h"

namespace tests::campaign {

// A way through the wizard, with what is wrong around it from the beginning.
struct Flow {
    std::string_view name;
    // Where the flow ends when nothing else goes wrong.
    CarDriver::End end;
    void (*prepare)(unit::VirtualUnit::Options& options);
    // Drives to the end; nothing when the program ended on the way or no end was found.
    std::optional<CarDriver::End> (*drive)(WizardRun& run, CarDriver& driver);
};

std::span<const Flow> Flows();

// An update of a few seconds and a few reports.
void ShortenUpdate(dvrsim::Timings& timings, dvrsim::Faults& faults);

// No drive takes longer, whatever has happened.
inline constexpr std::chrono::seconds kLongestDrive{400};

}  // namespace tests::campaign
