#pragma once

#include <memory>
#include <string>

#include "platform/device/stream_driver.h"

namespace unit {

class DriverRegistry;

// A driver whose openings are told to the registry, and whose requests are told and may be refused
// when `requests`. The registry must outlive it and its streams.
std::shared_ptr<platform::device::StreamDriver> WatchDriver(
    DriverRegistry& registry, std::wstring name,
    std::shared_ptr<platform::device::StreamDriver> driver, bool requests);

}  // namespace unit
