#pragma once

#include <memory>
#include <string>

#include "platform/device/stream_driver.h"

namespace unit {

class DriverShelf;

// A driver whose openings are told to the shelf, and whose requests are told and may be refused
// when `requests`. The shelf must outlive it and its streams.
std::shared_ptr<platform::device::StreamDriver> WatchDriver(
    DriverShelf& shelf, std::wstring name, std::shared_ptr<platform::device::StreamDriver> driver,
    bool requests);

}  // namespace unit
